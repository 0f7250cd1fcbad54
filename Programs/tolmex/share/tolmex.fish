# Completion of tolmex in fish.
set -l calls run shell picture info import sun desktop
complete -c tolmex -n "not __fish_seen_subcommand_from $calls" -f -a "$calls"
for call in $calls
    complete -c tolmex -n "__fish_seen_subcommand_from $call" -l help -d 'Say what there is'
end
for call in run shell picture info import sun
    complete -c tolmex -n "__fish_seen_subcommand_from $call" -l quiet -d 'Hide the transcript'
end
for call in run shell picture import sun desktop
    complete -c tolmex -n "__fish_seen_subcommand_from $call" -l set -x -d 'Set a system variable'
    complete -c tolmex -n "__fish_seen_subcommand_from $call" -l support -r -d 'Folder of support files'
end
for call in run shell
    complete -c tolmex -n "__fish_seen_subcommand_from $call" -l out -r -d 'Where the drawing is saved'
    complete -c tolmex -n "__fish_seen_subcommand_from $call" -l picture -r -d 'A picture of the result'
end
for call in run picture
    complete -c tolmex -n "__fish_seen_subcommand_from $call" -l out-dir -r -d 'Folder of the results'
    complete -c tolmex -n "__fish_seen_subcommand_from $call" -l format -x -a 'png svg pdf tif html' -d 'Format of pictures'
end
for call in run picture info
    complete -c tolmex -n "__fish_seen_subcommand_from $call" -l jobs -x -d 'Drawings worked on at once'
end
complete -c tolmex -n '__fish_seen_subcommand_from run' -l script -r -d 'The script'
complete -c tolmex -n '__fish_seen_subcommand_from run' -l command -x -d 'A line of script'
complete -c tolmex -n '__fish_seen_subcommand_from run' -l strict -d 'Fail when something is skipped'
complete -c tolmex -n '__fish_seen_subcommand_from run' -l resume -d 'Leave what is up to date'
complete -c tolmex -n '__fish_seen_subcommand_from run' -l report -r -d 'A line of JSON for each drawing'
complete -c tolmex -n '__fish_seen_subcommand_from info' -l json -d 'One JSON document'
complete -c tolmex -n '__fish_seen_subcommand_from info' -l repair -r -d 'A repaired copy'
for call in run picture
    complete -c tolmex -n "__fish_seen_subcommand_from $call" -l width -x -d 'Width in pixels'
    complete -c tolmex -n "__fish_seen_subcommand_from $call" -l dpi -x -d 'Pixels per inch on paper'
    complete -c tolmex -n "__fish_seen_subcommand_from $call" -l all -d 'Strays far away, too'
    complete -c tolmex -n "__fish_seen_subcommand_from $call" -l paper -x -a 'A0 A1 A2 A3 A4 A5' -d 'Paper'
    complete -c tolmex -n "__fish_seen_subcommand_from $call" -l scale -x -d 'Scale on the paper, 1:N'
    complete -c tolmex -n "__fish_seen_subcommand_from $call" -l window -x -d 'Part to draw, x1,y1,x2,y2'
    complete -c tolmex -n "__fish_seen_subcommand_from $call" -l background -x -a 'white black transparent' -d 'Colour'
    complete -c tolmex -n "__fish_seen_subcommand_from $call" -l layout -x -d 'Layout to draw'
    complete -c tolmex -n "__fish_seen_subcommand_from $call" -l layers -x -d 'Layers to draw'
    complete -c tolmex -n "__fish_seen_subcommand_from $call" -l handles -x -d 'Layers whose handles are written'
    complete -c tolmex -n "__fish_seen_subcommand_from $call" -l lineweights -x -a 'off' -d 'Off, or a factor'
    complete -c tolmex -n "__fish_seen_subcommand_from $call" -l sheet -x -a 'A4-kaava A3-kaava A2-kaava A1-kaava A0-kaava' -d 'Sheet around the picture'
    complete -c tolmex -n "__fish_seen_subcommand_from $call" -l field -x -d 'Text of a field of the sheet'
    complete -c tolmex -n "__fish_seen_subcommand_from $call" -l legend -r -d 'Own texts of the legend'
    complete -c tolmex -n "__fish_seen_subcommand_from $call" -l worldfile -d 'A .pgw file beside a PNG'
    complete -c tolmex -n "__fish_seen_subcommand_from $call" -l crs -x -a 'TM35FIN GK25 EPSG:3879' -d 'Coordinate system of the drawing'
    complete -c tolmex -n "__fish_seen_subcommand_from $call" -l real-text -d 'Letters of an SVG as text'
    complete -c tolmex -n "__fish_seen_subcommand_from $call" -l grayscale -d 'Shades of grey'
    complete -c tolmex -n "__fish_seen_subcommand_from $call" -l monochrome -d 'One colour'
end
complete -c tolmex -n "__fish_seen_subcommand_from desktop" -l script -r -d 'Script that runs first'
complete -c tolmex -n "__fish_seen_subcommand_from desktop" -l language -x -a 'fi en' -d 'Language of the window'
complete -c tolmex -n "__fish_seen_subcommand_from desktop" -l geometry -x -d 'Size of the window'
complete -c tolmex -n '__fish_seen_subcommand_from import' -l picture -r -d 'A picture of the plan'
complete -c tolmex -n '__fish_seen_subcommand_from import' -l rules -x -a 'osm mtk kanta rekisteri' -d 'What becomes of what'
complete -c tolmex -n '__fish_seen_subcommand_from import' -l crs -x -d 'Coordinate system of the plan'
complete -c tolmex -n '__fish_seen_subcommand_from import' -l window -x -d 'Part to take, x1,y1,x2,y2'
complete -c tolmex -n '__fish_seen_subcommand_from import' -l direction -x -d 'Where shadows fall, degrees'
complete -c tolmex -n '__fish_seen_subcommand_from import' -l date -x -d 'Of delivery, for the credits'
complete -c tolmex -n '__fish_seen_subcommand_from import' -l symbols -r -d 'Folder of symbols'
complete -c tolmex -n '__fish_seen_subcommand_from import' -l illustrate -d 'Run the script at once'
complete -c tolmex -n '__fish_seen_subcommand_from import' -l script-out -r -d 'Where the script goes'
complete -c tolmex -n '__fish_seen_subcommand_from sun' -l date -x -d 'The day, 2026-03-20'
complete -c tolmex -n '__fish_seen_subcommand_from sun' -l times -x -d 'Times by the clock, 9,12,15'
complete -c tolmex -n '__fish_seen_subcommand_from sun' -l time-zone -x -d 'Whose clock'
complete -c tolmex -n '__fish_seen_subcommand_from sun' -l crs -x -d 'Coordinate system of the plan'
complete -c tolmex -n '__fish_seen_subcommand_from sun' -l place -x -d 'Latitude,longitude'
complete -c tolmex -n '__fish_seen_subcommand_from sun' -l out-dir -r -d 'Folder of the study'
complete -c tolmex -n '__fish_seen_subcommand_from sun' -l width -x -d 'Width in pixels'
complete -c tolmex -n '__fish_seen_subcommand_from sun' -l window -x -d 'Part to draw, x1,y1,x2,y2'
complete -c tolmex -n '__fish_seen_subcommand_from import' -l sheet -r -d 'A sheet for the picture'
complete -c tolmex -n '__fish_seen_subcommand_from import' -l field -x -d 'Field of the title block'
complete -c tolmex -n '__fish_seen_subcommand_from import' -l legend -r -d 'Own texts of the legend'
complete -c tolmex -n '__fish_seen_subcommand_from import' -l scale -x -d 'Scale on the sheet, 1:N'
