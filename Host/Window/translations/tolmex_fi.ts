<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fi_FI" sourcelanguage="en">
<context>
    <name>Banner</name>
    <message>
        <source>Close this message</source>
        <translation>Sulje viesti</translation>
    </message>
</context>
<context>
    <name>CanvasView</name>
    <message numerus="yes">
        <source>%n hit</source>
        <translation>
            <numerusform>%n osuu</numerusform>
            <numerusform>%n osuu</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n inside</source>
        <translation>
            <numerusform>%n sisällä</numerusform>
            <numerusform>%n sisällä</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n locked</source>
        <translation>
            <numerusform>%n lukittu</numerusform>
            <numerusform>%n lukittua</numerusform>
        </translation>
    </message>
    <message>
        <source>Drawing</source>
        <translation>Piirustus</translation>
    </message>
    <message numerus="yes">
        <source>%n places</source>
        <translation>
            <numerusform>%n paikka</numerusform>
            <numerusform>%n paikkaa</numerusform>
        </translation>
    </message>
    <message>
        <source>Line</source>
        <translation>Viiva</translation>
    </message>
    <message>
        <source>Point</source>
        <translation>Piste</translation>
    </message>
    <message>
        <source>Polyline</source>
        <translation>Murtoviiva</translation>
    </message>
    <message>
        <source>Block</source>
        <translation>Lohko</translation>
    </message>
    <message>
        <source>Circle</source>
        <translation>Ympyrä</translation>
    </message>
    <message>
        <source>Arc</source>
        <translation>Kaari</translation>
    </message>
    <message>
        <source>Ellipse</source>
        <translation>Ellipsi</translation>
    </message>
    <message>
        <source>Spline</source>
        <translation>Käyrä</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>Teksti</translation>
    </message>
    <message>
        <source>Face</source>
        <translation>Pinta</translation>
    </message>
    <message>
        <source>Fill</source>
        <translation>Täyttö</translation>
    </message>
    <message>
        <source>Dimension</source>
        <translation>Mitta</translation>
    </message>
    <message>
        <source>Viewport</source>
        <translation>Näkymä</translation>
    </message>
    <message>
        <source>%1 m²</source>
        <translation>%1 m²</translation>
    </message>
    <message>
        <source>%1 m</source>
        <translation>%1 m</translation>
    </message>
    <message>
        <source>layer %1</source>
        <translation>taso %1</translation>
    </message>
    <message numerus="yes">
        <source>Tab: %n more</source>
        <translation>
            <numerusform>Sarkain: %n muu</numerusform>
            <numerusform>Sarkain: %n muuta</numerusform>
        </translation>
    </message>
    <message>
        <source>Drawing %1 things…</source>
        <translation>Piirretään %1 kohdetta…</translation>
    </message>
</context>
<context>
    <name>CommandLine</name>
    <message>
        <source>Command line</source>
        <translation>Komentorivi</translation>
    </message>
    <message>
        <source>Commands that the letters may mean</source>
        <translation>Komennot, joita kirjaimet voivat tarkoittaa</translation>
    </message>
</context>
<context>
    <name>Conversation</name>
    <message>
        <source>There is nothing here.</source>
        <translation>Tässä ei ole mitään.</translation>
    </message>
    <message>
        <source>%1 selected</source>
        <translation>%1 valittu</translation>
    </message>
    <message>
        <source>Enter repeats %1</source>
        <translation>Enter toistaa: %1</translation>
    </message>
    <message>
        <source>Tolmex</source>
        <translation>Tolmex</translation>
    </message>
    <message>
        <source>Run %1 lines?</source>
        <translation>Ajetaanko %1 riviä?</translation>
    </message>
    <message>
        <source>Run</source>
        <translation>Aja</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Peruuta</translation>
    </message>
    <message>
        <source>%1 is open</source>
        <translation>%1 on auki</translation>
    </message>
    <message>
        <source>Left: pick</source>
        <translation>Vasen: valitse</translation>
    </message>
    <message>
        <source>drag: window</source>
        <translation>vedä: ikkuna</translation>
    </message>
    <message>
        <source>right: repeat %1</source>
        <translation>oikea: toista %1</translation>
    </message>
    <message>
        <source>Left: point</source>
        <translation>Vasen: piste</translation>
    </message>
    <message>
        <source>number: distance</source>
        <translation>luku: etäisyys</translation>
    </message>
    <message>
        <source>right: %1</source>
        <translation>oikea: %1</translation>
    </message>
    <message>
        <source>Esc: cancel</source>
        <translation>Esc: peruuta</translation>
    </message>
    <message>
        <source>Tab: next below</source>
        <translation>Sarkain: alla oleva</translation>
    </message>
    <message>
        <source>Esc: nothing</source>
        <translation>Esc: ei mitään</translation>
    </message>
    <message>
        <source>Left: add</source>
        <translation>Vasen: lisää</translation>
    </message>
    <message>
        <source>Shift: remove</source>
        <translation>Vaihto: poista</translation>
    </message>
    <message>
        <source>right: done</source>
        <translation>oikea: valmis</translation>
    </message>
    <message>
        <source>Type a number</source>
        <translation>Kirjoita luku</translation>
    </message>
    <message>
        <source>Click a choice or type</source>
        <translation>Napsauta vaihtoehtoa tai kirjoita</translation>
    </message>
    <message>
        <source>Esc: answers the prompt</source>
        <translation>Esc: vastaa kehotteeseen</translation>
    </message>
</context>
<context>
    <name>ElementsPanel</name>
    <message>
        <source>No elements yet. Choose Grass, point at a polyline.</source>
        <translation>Ei vielä elementtejä. Valitse Nurmikko ja osoita suljettu murtoviiva.</translation>
    </message>
    <message>
        <source>Kind</source>
        <translation>Laji</translation>
    </message>
    <message>
        <source>Count</source>
        <translation>Määrä</translation>
    </message>
    <message>
        <source>In all</source>
        <translation>Yhteensä</translation>
    </message>
    <message>
        <source>Elements</source>
        <translation>Elementit</translation>
    </message>
    <message>
        <source>and %1 more</source>
        <translation>ja %1 muuta</translation>
    </message>
</context>
<context>
    <name>ExportDialog</name>
    <message>
        <source>Export Picture</source>
        <translation>Vie kuvaksi</translation>
    </message>
    <message>
        <source>Print</source>
        <translation>Tulosta</translation>
    </message>
    <message>
        <source>The printer has no paper of %1 × %2 mm: nothing was printed.</source>
        <translation>Tulostimessa ei ole paperia %1 × %2 mm: mitään ei tulostettu.</translation>
    </message>
    <message>
        <source>Whole drawing</source>
        <translation>Koko piirustus</translation>
    </message>
    <message>
        <source>What is in sight</source>
        <translation>Näkyvä osa</translation>
    </message>
    <message>
        <source>Point on the drawing…</source>
        <translation>Osoita piirustuksesta…</translation>
    </message>
    <message>
        <source>No paper</source>
        <translation>Ei paperia</translation>
    </message>
    <message>
        <source>A size of your own in millimetres: 594x420</source>
        <translation>Oma koko millimetreinä: 594x420</translation>
    </message>
    <message>
        <source>Fitted</source>
        <translation>Sovita</translation>
    </message>
    <message>
        <source>White</source>
        <translation>Valkoinen</translation>
    </message>
    <message>
        <source>Transparent</source>
        <translation>Läpinäkyvä</translation>
    </message>
    <message>
        <source>Black</source>
        <translation>Musta</translation>
    </message>
    <message>
        <source>As drawn</source>
        <translation>Kuten piirretty</translation>
    </message>
    <message>
        <source>Thin</source>
        <translation>Ohuet</translation>
    </message>
    <message>
        <source>Twice as wide</source>
        <translation>Kaksinkertaiset</translation>
    </message>
    <message>
        <source>Colours</source>
        <translation>Värit</translation>
    </message>
    <message>
        <source>Greys</source>
        <translation>Harmaasävyt</translation>
    </message>
    <message>
        <source>Black and white</source>
        <translation>Mustavalkoinen</translation>
    </message>
    <message>
        <source>A pattern of layer names, for example tm?_*</source>
        <translation>Tasojen nimien malli, esimerkiksi tm?_*</translation>
    </message>
    <message>
        <source>&amp;Format</source>
        <translation>&amp;Muoto</translation>
    </message>
    <message>
        <source>&amp;Area</source>
        <translation>&amp;Alue</translation>
    </message>
    <message>
        <source>&amp;Paper</source>
        <translation>&amp;Paperi</translation>
    </message>
    <message>
        <source>&amp;Scale</source>
        <translation>Mitta&amp;kaava</translation>
    </message>
    <message>
        <source>&amp;Background</source>
        <translation>&amp;Tausta</translation>
    </message>
    <message>
        <source>&amp;Lines</source>
        <translation>&amp;Viivat</translation>
    </message>
    <message>
        <source>&amp;Tone</source>
        <translation>&amp;Sävy</translation>
    </message>
    <message>
        <source>La&amp;yers</source>
        <translation>Ta&amp;sot</translation>
    </message>
    <message>
        <source>&amp;Resolution</source>
        <translation>Ta&amp;rkkuus</translation>
    </message>
    <message>
        <source>Save…</source>
        <translation>Tallenna…</translation>
    </message>
    <message>
        <source>Print…</source>
        <translation>Tulosta…</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Peruuta</translation>
    </message>
    <message>
        <source>Preview</source>
        <translation>Esikatselu</translation>
    </message>
    <message>
        <source>Paper: A0 to A4, or 594x420 in millimetres.</source>
        <translation>Paperi: A0–A4 tai 594x420 millimetreinä.</translation>
    </message>
    <message>
        <source>Scale: 1:500, or fitted.</source>
        <translation>Mittakaava: 1:500 tai sovita.</translation>
    </message>
</context>
<context>
    <name>Facts</name>
    <message>
        <source>by layer</source>
        <translation>tason mukaan</translation>
    </message>
    <message>
        <source>by block</source>
        <translation>lohkon mukaan</translation>
    </message>
    <message>
        <source>default</source>
        <translation>oletus</translation>
    </message>
</context>
<context>
    <name>Feedback</name>
    <message>
        <source>polyline</source>
        <translation>murtoviiva</translation>
    </message>
    <message>
        <source>polylines</source>
        <translation>murtoviivaa</translation>
    </message>
    <message>
        <source>line</source>
        <translation>viiva</translation>
    </message>
    <message>
        <source>lines</source>
        <translation>viivaa</translation>
    </message>
    <message>
        <source>circle</source>
        <translation>ympyrä</translation>
    </message>
    <message>
        <source>circles</source>
        <translation>ympyrää</translation>
    </message>
    <message>
        <source>arc</source>
        <translation>kaari</translation>
    </message>
    <message>
        <source>arcs</source>
        <translation>kaarta</translation>
    </message>
    <message>
        <source>ellipse</source>
        <translation>ellipsi</translation>
    </message>
    <message>
        <source>ellipses</source>
        <translation>ellipsiä</translation>
    </message>
    <message>
        <source>spline</source>
        <translation>käyrä</translation>
    </message>
    <message>
        <source>splines</source>
        <translation>käyrää</translation>
    </message>
    <message>
        <source>point</source>
        <translation>piste</translation>
    </message>
    <message>
        <source>points</source>
        <translation>pistettä</translation>
    </message>
    <message>
        <source>text</source>
        <translation>teksti</translation>
    </message>
    <message>
        <source>texts</source>
        <translation>tekstiä</translation>
    </message>
    <message>
        <source>fill</source>
        <translation>täyttö</translation>
    </message>
    <message>
        <source>fills</source>
        <translation>täyttöä</translation>
    </message>
    <message>
        <source>symbol</source>
        <translation>symboli</translation>
    </message>
    <message>
        <source>symbols</source>
        <translation>symbolia</translation>
    </message>
    <message>
        <source>dimension</source>
        <translation>mitta</translation>
    </message>
    <message>
        <source>dimensions</source>
        <translation>mittaa</translation>
    </message>
    <message>
        <source>changed %1</source>
        <translation>muuttui %1</translation>
    </message>
    <message>
        <source>new %1</source>
        <translation>syntyi %1</translation>
    </message>
    <message>
        <source>erased %1</source>
        <translation>poistui %1</translation>
    </message>
    <message>
        <source>Nothing has changed: selected was %1.</source>
        <translation>Mikään ei muuttunut: valittuna %1.</translation>
    </message>
    <message>
        <source>unchanged %1 (%2)</source>
        <translation>ennallaan %1 (%2)</translation>
    </message>
</context>
<context>
    <name>FileDesk</name>
    <message>
        <source>Open Drawing</source>
        <translation>Avaa piirustus</translation>
    </message>
    <message>
        <source>Drawings (*.dxf *.dwg *.DXF *.DWG)</source>
        <translation>Piirustukset (*.dxf *.dwg *.DXF *.DWG)</translation>
    </message>
    <message>
        <source>All files (*)</source>
        <translation>Kaikki tiedostot (*)</translation>
    </message>
    <message>
        <source>%1 cannot be opened: %2</source>
        <translation>Piirustusta %1 ei voi avata: %2</translation>
    </message>
    <message numerus="yes">
        <source>Opened in part: %n objects left out.</source>
        <translation>
            <numerusform>Avattiin osittain: %n kohde jäi pois.</numerusform>
            <numerusform>Avattiin osittain: %n kohdetta jäi pois.</numerusform>
        </translation>
    </message>
    <message>
        <source>Show Problems</source>
        <translation>Näytä ongelmat</translation>
    </message>
    <message>
        <source>Save Repaired Copy…</source>
        <translation>Tallenna korjattu kopio…</translation>
    </message>
    <message>
        <source>repaired</source>
        <translation>korjattu</translation>
    </message>
    <message>
        <source>Saved: %1</source>
        <translation>Tallennettu: %1</translation>
    </message>
    <message>
        <source>Saving failed: %1</source>
        <translation>Tallennus ei onnistunut: %1</translation>
    </message>
    <message>
        <source>Will be saved as DXF: %1.</source>
        <translation>Tallentuu DXF-muodossa: %1.</translation>
    </message>
    <message>
        <source>Save Drawing</source>
        <translation>Tallenna piirustus</translation>
    </message>
    <message>
        <source>Drawings (*.dxf)</source>
        <translation>Piirustukset (*.dxf)</translation>
    </message>
    <message>
        <source>Somebody else has saved %1.</source>
        <translation>Joku muu on tallentanut piirustuksen %1.</translation>
    </message>
    <message>
        <source>Save As…</source>
        <translation>Tallenna nimellä…</translation>
    </message>
    <message>
        <source>Replace</source>
        <translation>Korvaa</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Peruuta</translation>
    </message>
    <message>
        <source>The drawing on disk is as it was.</source>
        <translation>Levyllä oleva piirustus on ennallaan.</translation>
    </message>
    <message>
        <source>Retry</source>
        <translation>Yritä uudelleen</translation>
    </message>
    <message>
        <source>There is no DWG reader.</source>
        <translation>DWG-lukija puuttuu.</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Sulje</translation>
    </message>
    <message>
        <source>The drawing cannot be opened: %1</source>
        <translation>Piirustusta ei voi avata: %1</translation>
    </message>
    <message>
        <source>Save changes to %1?</source>
        <translation>Tallennetaanko muutokset piirustukseen %1?</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Tallenna</translation>
    </message>
    <message>
        <source>Don't Save</source>
        <translation>Älä tallenna</translation>
    </message>
    <message>
        <source>Run Script</source>
        <translation>Aja skripti</translation>
    </message>
    <message>
        <source>Scripts (*.scr)</source>
        <translation>Skriptit (*.scr)</translation>
    </message>
    <message>
        <source>Save as Script</source>
        <translation>Tallenna skriptinä</translation>
    </message>
    <message>
        <source>Load Add-in</source>
        <translation>Lataa laajennus</translation>
    </message>
    <message>
        <source>Add-ins (*.arx)</source>
        <translation>Laajennukset (*.arx)</translation>
    </message>
    <message>
        <source>Reading %1 again drops your changes.</source>
        <translation>Piirustuksen %1 lukeminen uudestaan hylkää muutoksesi.</translation>
    </message>
    <message>
        <source>Reload</source>
        <translation>Lue uudestaan</translation>
    </message>
    <message>
        <source>%1 has changed on disk.</source>
        <translation>%1 on muuttunut levyllä.</translation>
    </message>
    <message>
        <source>Keep</source>
        <translation>Jätä</translation>
    </message>
    <message>
        <source>Tolmex closed unexpectedly. %1: recovery of %2, saved %3.</source>
        <translation>Tolmex sulkeutui odottamatta. %1: palautus %2, tallennettu %3.</translation>
    </message>
    <message>
        <source>Recover</source>
        <translation>Palauta</translation>
    </message>
    <message>
        <source>Open Saved</source>
        <translation>Avaa tallennettu</translation>
    </message>
    <message>
        <source>Decide Later</source>
        <translation>Päätä myöhemmin</translation>
    </message>
</context>
<context>
    <name>HistoryView</name>
    <message>
        <source>History</source>
        <translation>Historia</translation>
    </message>
    <message>
        <source>Search the history</source>
        <translation>Etsi historiasta</translation>
    </message>
</context>
<context>
    <name>HostPhrases</name>
    <message>
        <source>Command: </source>
        <translation>Komento: </translation>
    </message>
    <message>
        <source>Select objects: </source>
        <translation>Valitse kohteet: </translation>
    </message>
    <message>
        <source>Remove objects: </source>
        <translation>Poista valinnasta: </translation>
    </message>
    <message>
        <source>Select object: </source>
        <translation>Valitse kohde: </translation>
    </message>
    <message>
        <source>%1 found</source>
        <translation>%1 löytyi</translation>
    </message>
    <message>
        <source>%1 found, %2 total</source>
        <translation>%1 löytyi, yhteensä %2</translation>
    </message>
    <message>
        <source>%1 found (%2 duplicate), %3 total</source>
        <translation>%1 löytyi (%2 oli jo valittu), yhteensä %3</translation>
    </message>
    <message>
        <source>%1 found (%2 duplicate)</source>
        <translation>%1 löytyi (%2 oli jo valittu)</translation>
    </message>
    <message>
        <source>%1 found, %2 removed, %3 total</source>
        <translation>%1 löytyi, %2 poistettiin, yhteensä %3</translation>
    </message>
    <message>
        <source>%1 found, %2 filtered out</source>
        <translation>%1 löytyi, %2 ei kelpaa</translation>
    </message>
    <message>
        <source>%1 found, %2 filtered out, %3 total</source>
        <translation>%1 löytyi, %2 ei kelpaa, yhteensä %3</translation>
    </message>
    <message>
        <source>%1 was on a locked layer.</source>
        <translation>%1 oli lukitulla tasolla.</translation>
    </message>
    <message>
        <source>%1 were on a locked layer.</source>
        <translation>%1 oli lukitulla tasolla.</translation>
    </message>
    <message>
        <source>%1 was not in current space.</source>
        <translation>%1 ei ollut nykyisessä tilassa.</translation>
    </message>
    <message>
        <source>%1 were not in current space.</source>
        <translation>%1 ei ollut nykyisessä tilassa.</translation>
    </message>
    <message>
        <source>*Cancel*</source>
        <translation>*Peruttu*</translation>
    </message>
    <message>
        <source>Specify first point: </source>
        <translation>Anna ensimmäinen piste: </translation>
    </message>
    <message>
        <source>Specify start point: </source>
        <translation>Anna aloituspiste: </translation>
    </message>
    <message>
        <source>Specify next point or [Undo]: </source>
        <translation>Anna seuraava piste tai [Kumoa (U)]: </translation>
    </message>
    <message>
        <source>Specify next point or [Close/Undo]: </source>
        <translation>Anna seuraava piste tai [Sulje (C)/Kumoa (U)]: </translation>
    </message>
    <message>
        <source>Specify next point or [Arc/Halfwidth/Length/Undo/Width]: </source>
        <translation>Anna seuraava piste tai [Kaari (A)/Puolileveys (H)/Pituus (L)/Kumoa (U)/Leveys (W)]: </translation>
    </message>
    <message>
        <source>Specify next point or [Arc/Close/Halfwidth/Length/Undo/Width]: </source>
        <translation>Anna seuraava piste tai [Kaari (A)/Sulje (C)/Puolileveys (H)/Pituus (L)/Kumoa (U)/Leveys (W)]: </translation>
    </message>
    <message>
        <source>Current line-width is %1</source>
        <translation>Viivan leveys on %1</translation>
    </message>
    <message>
        <source>Specify first corner: </source>
        <translation>Anna ensimmäinen kulma: </translation>
    </message>
    <message>
        <source>Specify opposite corner: </source>
        <translation>Anna vastakkainen kulma: </translation>
    </message>
    <message>
        <source>Specify point: </source>
        <translation>Anna piste: </translation>
    </message>
    <message>
        <source>Specify center point: </source>
        <translation>Anna keskipiste: </translation>
    </message>
    <message>
        <source>Specify base point: </source>
        <translation>Anna peruspiste: </translation>
    </message>
    <message>
        <source>Specify second point: </source>
        <translation>Anna toinen piste: </translation>
    </message>
    <message>
        <source>Specify base point or [Displacement] &lt;Displacement&gt;: </source>
        <translation>Anna peruspiste tai [Siirtymä (D)] &lt;Siirtymä&gt;: </translation>
    </message>
    <message>
        <source>Specify displacement: </source>
        <translation>Anna siirtymä: </translation>
    </message>
    <message>
        <source>Specify second point or &lt;use first point as displacement&gt;: </source>
        <translation>Anna toinen piste tai &lt;ensimmäinen piste on siirtymä&gt;: </translation>
    </message>
    <message>
        <source>Specify second point or [Exit/Undo] &lt;Exit&gt;: </source>
        <translation>Anna toinen piste tai [Lopeta (E)/Kumoa (U)] &lt;Lopeta&gt;: </translation>
    </message>
    <message>
        <source>Specify rotation angle or [Copy/Reference] &lt;0&gt;: </source>
        <translation>Anna kiertokulma tai [Kopioi (C)/Vertailu (R)] &lt;0&gt;: </translation>
    </message>
    <message>
        <source>Specify the reference angle &lt;0&gt;: </source>
        <translation>Anna vertailukulma &lt;0&gt;: </translation>
    </message>
    <message>
        <source>Specify the new angle &lt;0&gt;: </source>
        <translation>Anna uusi kulma &lt;0&gt;: </translation>
    </message>
    <message>
        <source>Enter property to change [Color/LAyer/LType/ltScale/LWeight]: </source>
        <translation>Mitä muutetaan? [Väri (C)/Taso (LA)/Viivatyyppi (LT)/Tyypin mittakaava (S)/Leveys (LW)]: </translation>
    </message>
    <message>
        <source>Enter new color &lt;BYLAYER&gt;: </source>
        <translation>Uusi väri &lt;BYLAYER&gt;: </translation>
    </message>
    <message>
        <source>Enter new layer name &lt;0&gt;: </source>
        <translation>Uuden tason nimi &lt;0&gt;: </translation>
    </message>
    <message>
        <source>Enter new linetype name &lt;ByLayer&gt;: </source>
        <translation>Uuden viivatyypin nimi &lt;ByLayer&gt;: </translation>
    </message>
    <message>
        <source>Enter new lineweight &lt;ByLayer&gt;: </source>
        <translation>Uusi leveys &lt;ByLayer&gt;: </translation>
    </message>
    <message>
        <source>Specify new linetype scale &lt;1&gt;: </source>
        <translation>Uusi viivatyypin mittakaava &lt;1&gt;: </translation>
    </message>
    <message>
        <source>Specify first corner point or [Object] &lt;Object&gt;: </source>
        <translation>Anna ensimmäinen kulma tai [Kohde (O)] &lt;Kohde&gt;: </translation>
    </message>
    <message>
        <source>Specify next point or [Undo] &lt;total&gt;: </source>
        <translation>Anna seuraava piste tai [Kumoa (U)] &lt;ala&gt;: </translation>
    </message>
    <message>
        <source>Specify start point of text or [Justify/Style]: </source>
        <translation>Anna tekstin paikka tai [Tasaus (J)/Tyyli (S)]: </translation>
    </message>
    <message>
        <source>Specify height &lt;%1&gt;: </source>
        <translation>Anna korkeus &lt;%1&gt;: </translation>
    </message>
    <message>
        <source>Specify rotation angle of text &lt;0&gt;: </source>
        <translation>Anna tekstin kulma &lt;0&gt;: </translation>
    </message>
    <message>
        <source>Enter text: </source>
        <translation>Kirjoita teksti: </translation>
    </message>
    <message>
        <source>Specify corner of window, enter a scale factor (nX), or [All/Center/Extents/Previous/Scale/Window/Object]: </source>
        <translation>Anna ikkunan kulma, kerroin (nX) tai [Kaikki (A)/Keskipiste (C)/Koko (E)/Edellinen (P)/Kerroin (S)/Ikkuna (W)/Kohteet (O)]: </translation>
    </message>
    <message>
        <source>Enter name of drawing to open: </source>
        <translation>Anna avattavan piirustuksen nimi: </translation>
    </message>
    <message>
        <source>Enter name of picture file: </source>
        <translation>Anna kuvatiedoston nimi: </translation>
    </message>
    <message>
        <source>Enter script file name: </source>
        <translation>Anna skriptin nimi: </translation>
    </message>
    <message>
        <source>Save drawing as &lt;%1&gt;: </source>
        <translation>Tallenna nimellä &lt;%1&gt;: </translation>
    </message>
    <message>
        <source>Saved %1</source>
        <translation>Tallennettu %1</translation>
    </message>
    <message>
        <source>Enter variable name or [?]: </source>
        <translation>Anna muuttujan nimi tai [?]: </translation>
    </message>
    <message>
        <source>Enter new value for %1 &lt;%2&gt;: </source>
        <translation>Anna muuttujan %1 uusi arvo &lt;%2&gt;: </translation>
    </message>
    <message>
        <source>Enter layout option [Set/?] &lt;Set&gt;: </source>
        <translation>Asettelu: [Vaihda (Set)/?] &lt;Set&gt;: </translation>
    </message>
    <message>
        <source>Enter layout to make current &lt;%1&gt;: </source>
        <translation>Anna asettelun nimi &lt;%1&gt;: </translation>
    </message>
    <message>
        <source>Current layer:  %1</source>
        <translation>Nykyinen taso: %1</translation>
    </message>
    <message>
        <source>Enter an option [?/Make/Set/New/ON/OFF/Color/Ltype/LWeight/Freeze/Thaw/LOck/Unlock]: </source>
        <translation>Anna toiminto [?/Luo nykyiseksi (M)/Nykyinen (S)/Uusi (N)/Päälle (ON)/Pois (OFF)/Väri (C)/Viivatyyppi (L)/Leveys (LW)/Jäädytä (F)/Sulata (T)/Lukitse (LO)/Avaa (U)]: </translation>
    </message>
    <message>
        <source>Enter an option [?/Load/Set]: </source>
        <translation>Anna toiminto [?/Lataa (L)/Aseta (S)]: </translation>
    </message>
    <message>
        <source>Enter an option [?/Load/Unload/LIst/Commands]: </source>
        <translation>Anna toiminto [?/Lataa (L)/Poista (U)/Luettele (LI)/Komennot (C)]: </translation>
    </message>
    <message>
        <source>Enter name list for new layer(s): </source>
        <translation>Anna uusien tasojen nimet: </translation>
    </message>
    <message>
        <source>Enter name for new layer (becomes the current layer) &lt;%1&gt;: </source>
        <translation>Anna uuden, nykyiseksi tulevan tason nimi &lt;%1&gt;: </translation>
    </message>
    <message>
        <source>Enter layer name to make current &lt;%1&gt;: </source>
        <translation>Anna nykyiseksi tulevan tason nimi &lt;%1&gt;: </translation>
    </message>
    <message>
        <source>Enter name list of layer(s) to turn on: </source>
        <translation>Anna näytettävien tasojen nimet: </translation>
    </message>
    <message>
        <source>Enter name list of layer(s) to turn off: </source>
        <translation>Anna piilotettavien tasojen nimet: </translation>
    </message>
    <message>
        <source>Enter name list of layer(s) to freeze: </source>
        <translation>Anna jäädytettävien tasojen nimet: </translation>
    </message>
    <message>
        <source>Enter name list of layer(s) to thaw: </source>
        <translation>Anna sulatettavien tasojen nimet: </translation>
    </message>
    <message>
        <source>Enter name list of layer(s) to lock: </source>
        <translation>Anna lukittavien tasojen nimet: </translation>
    </message>
    <message>
        <source>Enter name list of layer(s) to unlock: </source>
        <translation>Anna avattavien tasojen nimet: </translation>
    </message>
    <message>
        <source>Enter name list of layer(s) for %1 &lt;%2&gt;: </source>
        <translation>Anna tasojen nimet (%1) &lt;%2&gt;: </translation>
    </message>
    <message>
        <source>New color: </source>
        <translation>Uusi väri: </translation>
    </message>
    <message>
        <source>Enter linetype(s) to load: </source>
        <translation>Anna ladattavien viivatyyppien nimet: </translation>
    </message>
    <message>
        <source>Enter name of linetype file to search &lt;%1&gt;: </source>
        <translation>Anna viivatyyppitiedoston nimi &lt;%1&gt;: </translation>
    </message>
    <message>
        <source>Specify linetype name or [?] &lt;%1&gt;: </source>
        <translation>Anna viivatyypin nimi tai [?] &lt;%1&gt;: </translation>
    </message>
    <message>
        <source>Linetype %1 loaded.</source>
        <translation>Viivatyyppi %1 ladattiin.</translation>
    </message>
    <message>
        <source>Enter the number of operations to undo &lt;1&gt;: </source>
        <translation>Anna kumottavien komentojen määrä &lt;1&gt;: </translation>
    </message>
    <message>
        <source>Everything has been undone</source>
        <translation>Kaikki on kumottu</translation>
    </message>
    <message>
        <source>Nothing to redo</source>
        <translation>Mitään ei ole tehtävänä uudelleen</translation>
    </message>
    <message>
        <source>Regenerating model.</source>
        <translation>Piirretään uudelleen.</translation>
    </message>
    <message>
        <source>No tooltip.</source>
        <translation>Tässä ei ole vihjettä.</translation>
    </message>
    <message>
        <source>Resuming %1 command.</source>
        <translation>Komento %1 jatkuu.</translation>
    </message>
    <message>
        <source>%1 is open already; it is the current drawing now.</source>
        <translation>%1 on jo auki; se on nyt esillä.</translation>
    </message>
    <message>
        <source>Save changes to %1? [Yes/No/Cancel] &lt;Y&gt;: </source>
        <translation>Tallennetaanko muutokset piirustukseen %1? [Kyllä (Y)/Ei (N)/Peruuta (C)] &lt;Y&gt;: </translation>
    </message>
    <message>
        <source>Unknown command "%1".</source>
        <translation>Tuntematon komento "%1".</translation>
    </message>
    <message>
        <source>Unknown command "%1".  Nearest: %2.</source>
        <translation>Tuntematon komento "%1". Lähimmät: %2.</translation>
    </message>
    <message>
        <source>Invalid point.</source>
        <translation>Piste ei kelpaa.</translation>
    </message>
    <message>
        <source>Requires numeric value.</source>
        <translation>Anna luku, esimerkiksi 2.5.</translation>
    </message>
    <message>
        <source>Requires an integer value.</source>
        <translation>Anna kokonaisluku.</translation>
    </message>
    <message>
        <source>Requires text.</source>
        <translation>Anna teksti.</translation>
    </message>
    <message>
        <source>An answer is needed here.</source>
        <translation>Tähän tarvitaan vastaus.</translation>
    </message>
    <message>
        <source>Invalid option keyword.</source>
        <translation>Vaihtoehto ei kelpaa.</translation>
    </message>
    <message>
        <source>*Invalid selection*%1</source>
        <translation>Valinta ei kelpaa. Osoita kohdetta tai kirjoita W, C, L, P tai ALL.</translation>
    </message>
    <message>
        <source>Value must be positive and nonzero.</source>
        <translation>Arvon on oltava suurempi kuin 0.</translation>
    </message>
    <message>
        <source>Value must be positive or zero.</source>
        <translation>Arvo ei saa olla negatiivinen.</translation>
    </message>
    <message>
        <source>Value must be nonzero.</source>
        <translation>Arvo ei saa olla 0.</translation>
    </message>
    <message>
        <source>A file name is needed.</source>
        <translation>Tarvitaan tiedoston nimi.</translation>
    </message>
    <message>
        <source>No drawing is open: %1 needs one.</source>
        <translation>Mikään piirustus ei ole auki: %1 tarvitsee sellaisen.</translation>
    </message>
    <message>
        <source>No drawing is open.</source>
        <translation>Mikään piirustus ei ole auki.</translation>
    </message>
    <message>
        <source>No layout is named "%1"; there are: %2.</source>
        <translation>Asettelua "%1" ei ole; asettelut ovat: %2.</translation>
    </message>
    <message>
        <source>No previous selection set.</source>
        <translation>Aiempaa valintaa ei ole.</translation>
    </message>
    <message>
        <source>No matching layer names found: %1.</source>
        <translation>Tasoja ei löydy: %1.</translation>
    </message>
    <message>
        <source>Cannot freeze layer %1: it is the current layer.</source>
        <translation>Tasoa %1 ei voi jäädyttää: se on nykyinen taso.</translation>
    </message>
    <message>
        <source>The script %1 cannot be read.</source>
        <translation>Skriptiä %1 ei voi lukea.</translation>
    </message>
    <message>
        <source>** %1 may not be invoked transparently **</source>
        <translation>Komentoa %1 ei voi ajaa toisen komennon aikana.</translation>
    </message>
</context>
<context>
    <name>LayersPanel</name>
    <message>
        <source>Filter the layers</source>
        <translation>Suodata tasoja</translation>
    </message>
    <message>
        <source>Layer</source>
        <translation>Taso</translation>
    </message>
    <message>
        <source>Things</source>
        <translation>Kohteita</translation>
    </message>
    <message>
        <source>Layers</source>
        <translation>Tasot</translation>
    </message>
    <message>
        <source>emptied by updates</source>
        <translation>tyhjennetään päivityksessä</translation>
    </message>
    <message>
        <source>Off: click shows the layer</source>
        <translation>Piilossa: napsautus näyttää tason</translation>
    </message>
    <message>
        <source>On: click hides the layer</source>
        <translation>Näkyvissä: napsautus piilottaa tason</translation>
    </message>
    <message>
        <source>Frozen: click thaws the layer</source>
        <translation>Jäädytetty: napsautus sulattaa tason</translation>
    </message>
    <message>
        <source>Click freezes the layer</source>
        <translation>Napsautus jäädyttää tason</translation>
    </message>
    <message>
        <source>Locked: click unlocks the layer</source>
        <translation>Lukittu: napsautus avaa lukituksen</translation>
    </message>
    <message>
        <source>Click locks the layer</source>
        <translation>Napsautus lukitsee tason</translation>
    </message>
    <message>
        <source>Click changes the colour</source>
        <translation>Napsautus vaihtaa värin</translation>
    </message>
    <message>
        <source>%1 is the current layer</source>
        <translation>%1 on nykyinen taso</translation>
    </message>
    <message>
        <source>Other…</source>
        <translation>Muu…</translation>
    </message>
    <message>
        <source>Colour of the Layer</source>
        <translation>Tason väri</translation>
    </message>
    <message>
        <source>Only This</source>
        <translation>Vain tämä</translation>
    </message>
    <message>
        <source>Show All</source>
        <translation>Näytä kaikki</translation>
    </message>
    <message>
        <source>Make Current</source>
        <translation>Tee nykyiseksi</translation>
    </message>
    <message>
        <source>Select Its Things</source>
        <translation>Valitse tason kohteet</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>%1 cannot be opened: %2</source>
        <translation>Piirustusta %1 ei voi avata: %2</translation>
    </message>
    <message>
        <source>Open drawings</source>
        <translation>Avoimet piirustukset</translation>
    </message>
    <message>
        <source>Drawing</source>
        <translation>Piirustus</translation>
    </message>
    <message>
        <source>Tools</source>
        <translation>Työkalut</translation>
    </message>
    <message>
        <source>Nothing</source>
        <translation>Ei mitään</translation>
    </message>
    <message>
        <source>Palette</source>
        <translation>Paletti</translation>
    </message>
    <message>
        <source>Panels</source>
        <translation>Paneelit</translation>
    </message>
    <message>
        <source>Stopped. The drawing is as it was.</source>
        <translation>Keskeytetty. Piirustus on ennallaan.</translation>
    </message>
    <message>
        <source>%1 is waiting</source>
        <translation>%1 odottaa</translation>
    </message>
    <message numerus="yes">
        <source>%n objects lie far away.</source>
        <translation>
            <numerusform>%n kohde on kaukana muista.</numerusform>
            <numerusform>%n kohdetta on kaukana muista.</numerusform>
        </translation>
    </message>
    <message>
        <source>Show All</source>
        <translation>Näytä kaikki</translation>
    </message>
    <message>
        <source>Show</source>
        <translation>Näytä</translation>
    </message>
    <message>
        <source>Guide</source>
        <translation>Käyttöohje</translation>
    </message>
    <message>
        <source>The guide is not installed.</source>
        <translation>Käyttöohjetta ei ole asennettu.</translation>
    </message>
    <message>
        <source>History large or small</source>
        <translation>Historia suureksi tai pieneksi</translation>
    </message>
    <message>
        <source>Snapping on or off</source>
        <translation>Tartunta päälle tai pois</translation>
    </message>
    <message>
        <source>Straight directions on or off</source>
        <translation>Suorat suunnat päälle tai pois</translation>
    </message>
    <message>
        <source>Pointing with the arrow keys; Insert is a click</source>
        <translation>Osoittaminen nuolinäppäimillä; Insert on napsautus</translation>
    </message>
    <message>
        <source>The next thing beneath the cursor</source>
        <translation>Seuraava kohde osoittimen alla</translation>
    </message>
    <message>
        <source>Cancels; nothing changes</source>
        <translation>Peruuttaa; mikään ei muutu</translation>
    </message>
    <message>
        <source>Keys</source>
        <translation>Näppäimet</translation>
    </message>
    <message>
        <source>Choose in the palette what to make, then point at a line.</source>
        <translation>Valitse paletista, mitä teet, ja osoita sitten viivaa.</translation>
    </message>
    <message>
        <source>Understood</source>
        <translation>Selvä</translation>
    </message>
    <message>
        <source>Saved: %1</source>
        <translation>Tallennettu: %1</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Avaa</translation>
    </message>
    <message>
        <source>Open Folder</source>
        <translation>Avaa kansio</translation>
    </message>
    <message>
        <source>The script stopped at line %1: %2</source>
        <translation>Skripti pysähtyi riville %1: %2</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Kumoa</translation>
    </message>
    <message>
        <source>Keep</source>
        <translation>Jätä</translation>
    </message>
    <message>
        <source>Layer %1 is locked.</source>
        <translation>Taso %1 on lukittu.</translation>
    </message>
    <message>
        <source>Unlock</source>
        <translation>Avaa lukitus</translation>
    </message>
</context>
<context>
    <name>Palette</name>
    <message>
        <source>Palette</source>
        <translation>Paletti</translation>
    </message>
</context>
<context>
    <name>PicturePage</name>
    <message>
        <source>Does not fit: %1 × %2 mm needed, %3 has %4 × %5.</source>
        <translation>Ei mahdu: tarvitaan %1 × %2 mm, %3 on %4 × %5.</translation>
    </message>
</context>
<context>
    <name>ProblemsPanel</name>
    <message>
        <source>No problems.</source>
        <translation>Ei ongelmia.</translation>
    </message>
    <message>
        <source>Problem</source>
        <translation>Ongelma</translation>
    </message>
    <message>
        <source>Handle</source>
        <translation>Kahva</translation>
    </message>
    <message>
        <source>Line</source>
        <translation>Viiva</translation>
    </message>
    <message>
        <source>Problems</source>
        <translation>Ongelmat</translation>
    </message>
    <message>
        <source>Show</source>
        <translation>Näytä</translation>
    </message>
    <message>
        <source>Close Line</source>
        <translation>Sulje viiva</translation>
    </message>
</context>
<context>
    <name>Prompt</name>
    <message>
        <source>Not a point. For example 10,5 or @5&lt;90.</source>
        <translation>Piste ei kelpaa. Esimerkiksi 10,5 tai @5&lt;90.</translation>
    </message>
    <message>
        <source>Give a number, for example 2.5.</source>
        <translation>Anna luku, esimerkiksi 2.5.</translation>
    </message>
    <message>
        <source>Point at an object, or type W, C, L, P or ALL.</source>
        <translation>Osoita kohdetta tai kirjoita W, C, L, P tai ALL.</translation>
    </message>
    <message>
        <source>Click one of the choices or type its letters.</source>
        <translation>Napsauta vaihtoehtoa tai kirjoita sen kirjaimet.</translation>
    </message>
</context>
<context>
    <name>PropertiesPanel</name>
    <message>
        <source>Properties</source>
        <translation>Ominaisuudet</translation>
    </message>
    <message>
        <source>Drawing</source>
        <translation>Piirustus</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Tiedosto</translation>
    </message>
    <message>
        <source>not saved yet</source>
        <translation>ei vielä tallennettu</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Kansio</translation>
    </message>
    <message>
        <source>Version</source>
        <translation>Versio</translation>
    </message>
    <message>
        <source>Things</source>
        <translation>Kohteita</translation>
    </message>
    <message>
        <source>Elements</source>
        <translation>Elementit</translation>
    </message>
    <message>
        <source>Extents</source>
        <translation>Laajuus</translation>
    </message>
    <message>
        <source>Layout</source>
        <translation>Asettelu</translation>
    </message>
    <message>
        <source>Layer</source>
        <translation>Taso</translation>
    </message>
    <message>
        <source>Colour</source>
        <translation>Väri</translation>
    </message>
    <message>
        <source>Linetype</source>
        <translation>Viivatyyppi</translation>
    </message>
    <message>
        <source>Lineweight</source>
        <translation>Leveys</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>Tyyppi</translation>
    </message>
    <message>
        <source>Kind</source>
        <translation>Laji</translation>
    </message>
    <message>
        <source>Says</source>
        <translation>Tiedot</translation>
    </message>
    <message>
        <source>Area</source>
        <translation>Ala</translation>
    </message>
    <message>
        <source>Perimeter</source>
        <translation>Piiri</translation>
    </message>
    <message>
        <source>Length</source>
        <translation>Pituus</translation>
    </message>
    <message>
        <source>Closed</source>
        <translation>Suljettu</translation>
    </message>
    <message>
        <source>yes</source>
        <translation>kyllä</translation>
    </message>
    <message>
        <source>no</source>
        <translation>ei</translation>
    </message>
    <message>
        <source>Points</source>
        <translation>Pisteitä</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Nimi</translation>
    </message>
    <message>
        <source>Content</source>
        <translation>Sisältö</translation>
    </message>
    <message>
        <source>Point</source>
        <translation>Piste</translation>
    </message>
    <message>
        <source>Angle</source>
        <translation>Kulma</translation>
    </message>
    <message>
        <source>Handle</source>
        <translation>Kahva</translation>
    </message>
    <message>
        <source>varies</source>
        <translation>eri arvoja</translation>
    </message>
    <message>
        <source>%1 things</source>
        <translation>%1 kohdetta</translation>
    </message>
    <message>
        <source>Kinds</source>
        <translation>Lajit</translation>
    </message>
    <message>
        <source>Area in all</source>
        <translation>Ala yhteensä</translation>
    </message>
    <message>
        <source>Length in all</source>
        <translation>Pituus yhteensä</translation>
    </message>
</context>
<context>
    <name>Questions</name>
    <message>
        <source>Close</source>
        <translation>Sulje</translation>
    </message>
    <message>
        <source>%1 drawings are not saved.</source>
        <translation>%1 piirustusta on tallentamatta.</translation>
    </message>
    <message>
        <source>Save Ticked</source>
        <translation>Tallenna valitut</translation>
    </message>
    <message>
        <source>Don't Save</source>
        <translation>Älä tallenna</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Peruuta</translation>
    </message>
</context>
<context>
    <name>SidePanel</name>
    <message>
        <source>Properties</source>
        <translation>Ominaisuudet</translation>
    </message>
    <message>
        <source>Elements</source>
        <translation>Elementit</translation>
    </message>
    <message>
        <source>Layers</source>
        <translation>Tasot</translation>
    </message>
    <message>
        <source>Problems</source>
        <translation>Ongelmat</translation>
    </message>
</context>
<context>
    <name>StartPage</name>
    <message>
        <source>Plan lines become an illustration.</source>
        <translation>Kaavan viivoista tulee havainnekuva.</translation>
    </message>
    <message>
        <source>Open…</source>
        <translation>Avaa…</translation>
    </message>
    <message>
        <source>New</source>
        <translation>Uusi</translation>
    </message>
    <message>
        <source>Example: %1</source>
        <translation>Esimerkki: %1</translation>
    </message>
    <message>
        <source>Files dropped here open.</source>
        <translation>Tähän pudotetut tiedostot avautuvat.</translation>
    </message>
    <message>
        <source>Recent drawings</source>
        <translation>Viimeksi avatut</translation>
    </message>
    <message>
        <source>no longer there</source>
        <translation>ei enää tallella</translation>
    </message>
    <message>
        <source>Remove from the List</source>
        <translation>Poista luettelosta</translation>
    </message>
</context>
<context>
    <name>StatusLine</name>
    <message>
        <source>Snap</source>
        <translation>Tartunta</translation>
    </message>
    <message>
        <source>Snaps to ends, middles, centres and crossings (F3)</source>
        <translation>Tarttuu päihin, keskikohtiin, keskipisteisiin ja leikkauksiin (F3)</translation>
    </message>
    <message>
        <source>Ortho</source>
        <translation>Orto</translation>
    </message>
    <message>
        <source>Points straight to the right, up, left or down (F8)</source>
        <translation>Osoittaa suoraan oikealle, ylös, vasemmalle tai alas (F8)</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>Tumma</translation>
    </message>
    <message>
        <source>Dark ground; the drawing does not change (Ctrl+Shift+D)</source>
        <translation>Tumma pohja; piirustus ei muutu (Ctrl+Shift+D)</translation>
    </message>
    <message>
        <source>What the buttons do now</source>
        <translation>Mitä painikkeet nyt tekevät</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Keskeytä</translation>
    </message>
    <message>
        <source>Stops the command (Esc)</source>
        <translation>Keskeyttää komennon (Esc)</translation>
    </message>
    <message>
        <source>Cursor</source>
        <translation>Osoitin</translation>
    </message>
    <message>
        <source>Scale on the screen</source>
        <translation>Mittakaava näytöllä</translation>
    </message>
    <message>
        <source>Esc: stop</source>
        <translation>Esc: keskeytä</translation>
    </message>
    <message>
        <source>Ends</source>
        <translation>Päät</translation>
    </message>
    <message>
        <source>Middles</source>
        <translation>Keskikohdat</translation>
    </message>
    <message>
        <source>Centres</source>
        <translation>Keskipisteet</translation>
    </message>
    <message>
        <source>Crossings</source>
        <translation>Leikkaukset</translation>
    </message>
    <message>
        <source>Right angles</source>
        <translation>Kohtisuorat</translation>
    </message>
    <message>
        <source>Nearest</source>
        <translation>Lähin kohta viivalla</translation>
    </message>
</context>
</TS>
