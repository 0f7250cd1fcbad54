#!/usr/bin/env python3
"""Writes small map data in the forms in which Finland's open data come: make_map_data.py FOLDER

mtk.gpkg   the National Land Survey's Topographic Database as GeoPackage: a table for each kind, heights with every
           vertex, EPSG:3067, attributes as the database names them
kanta.gml  a municipality's base map as its WFS answers in KuntaGML: geometry within sijainnit, several of them for one
           thing, east before north
"""

import pathlib
import sqlite3
import struct
import sys

EAST, NORTH = 385000, 6672000  # TM35FIN
KANTA_EAST, KANTA_NORTH = 25496000, 6672000  # GK25


def box(x, y, width, height):
    return [(x, y), (x + width, y), (x + width, y + height), (x, y + height), (x, y)]


# ---- GeoPackage ------------------------------------------------------------------------------------------------------

POINT, LINE, POLYGON = 1001, 1002, 1003  # with z


def vertices(points):
    return b"".join(struct.pack("<3d", EAST + x, NORTH + y, 12.5) for x, y in points)


def geometry(kind, points):
    body = {
        POINT: lambda: vertices(points),
        LINE: lambda: struct.pack("<I", len(points)) + vertices(points),
        POLYGON: lambda: struct.pack("<II", 1, len(points)) + vertices(points),
    }[kind]()
    return b"GP" + struct.pack("<BBi", 0, 1, 3067) + struct.pack("<BI", 1, kind) + body


TABLES = {
    # table: (kind, columns, rows of points and values)
    "rakennus": (POLYGON, ["kohdeluokka", "kayttotarkoitus", "kerrosluku", "korkeusarvo"], [
        (box(0, 0, 10, 10), (42211, 1, 1, 15300)),     # a dwelling of 1 or 2 floors, small
        (box(20, 0, 20, 20), (42211, 1, 1, 15300)),    # the same, large
        (box(50, 0, 30, 20), (42212, 1, 2, 25300)),    # 3 floors or more
        (box(90, 0, 20, 15), (42220, 2, 0, 15300)),    # public, unknown
        (box(120, 0, 20, 15), (42270, 5, 0, 15300)),   # a church
    ]),
    "rakennusreunaviiva": (LINE, ["kohdeluokka"], [(box(0, 0, 10, 10), (42111,))]),
    "tieviiva": (LINE, ["kohdeluokka", "paallyste", "tasosijainti", "valmiusaste"], [
        ([(0, 50), (100, 50)], (12131, 2, 0, 0)),
        ([(0, 70), (100, 70)], (12141, 1, 0, 0)),
        ([(0, 90), (100, 90)], (12121, 2, -1, 0)),     # in a tunnel
        ([(0, 110), (100, 110)], (12313, 0, 0, 0)),    # a path
    ]),
    "jarvi": (POLYGON, ["kohdeluokka"], [(box(0, 200, 60, 40), (36200,))]),
    "puisto": (POLYGON, ["kohdeluokka"], [(box(100, 200, 60, 40), (32900,))]),
    "maatalousmaa": (POLYGON, ["kohdeluokka"], [(box(200, 200, 60, 40), (32611,))]),
    "virtavesikapea": (LINE, ["kohdeluokka"], [([(0, 260), (100, 260)], (36311,)), ([(0, 280), (100, 280)], (36312,))]),
    "aita": (LINE, ["kohdeluokka"], [([(0, 300), (40, 300)], (44211,)), ([(0, 310), (40, 310)], (44213,))]),
    "puu": (POINT, ["kohdeluokka"], [([(150, 60)], (35100,))]),
    "metsamaankasvillisuus": (POINT, ["kohdeluokka"], [([(160, 60)], (32710,))]),
}


def write_geopackage(file):
    file.unlink(missing_ok=True)
    base = sqlite3.connect(file)
    base.executescript("""
        PRAGMA application_id = 0x47504B47;
        PRAGMA user_version = 10200;
        CREATE TABLE gpkg_spatial_ref_sys (srs_name TEXT NOT NULL, srs_id INTEGER NOT NULL PRIMARY KEY,
          organization TEXT NOT NULL, organization_coordsys_id INTEGER NOT NULL, definition TEXT NOT NULL, description TEXT);
        INSERT INTO gpkg_spatial_ref_sys VALUES ('ETRS89 / TM35FIN(E,N)', 3067, 'EPSG', 3067, 'undefined', NULL);
        CREATE TABLE gpkg_contents (table_name TEXT NOT NULL PRIMARY KEY, data_type TEXT NOT NULL, identifier TEXT,
          description TEXT DEFAULT '', last_change DATETIME NOT NULL DEFAULT '2026-01-01T00:00:00.000Z',
          min_x DOUBLE, min_y DOUBLE, max_x DOUBLE, max_y DOUBLE, srs_id INTEGER);
        CREATE TABLE gpkg_geometry_columns (table_name TEXT NOT NULL, column_name TEXT NOT NULL,
          geometry_type_name TEXT NOT NULL, srs_id INTEGER NOT NULL, z TINYINT NOT NULL, m TINYINT NOT NULL);
    """)
    names = {POINT: "POINT", LINE: "LINESTRING", POLYGON: "POLYGON"}
    for table, (kind, columns, rows) in TABLES.items():
        own = "".join(f", {column} INTEGER" for column in columns)
        base.execute(f"CREATE TABLE {table} (fid INTEGER PRIMARY KEY, geom {names[kind]}, sijaintitarkkuus INTEGER, "
                     f"aineistolahde INTEGER, alkupvm DATE, kohderyhma INTEGER{own})")
        base.execute("INSERT INTO gpkg_contents (table_name, data_type, identifier, srs_id) VALUES (?, 'features', ?, 3067)",
                     (table, table))
        base.execute("INSERT INTO gpkg_geometry_columns VALUES (?, 'geom', ?, 3067, 1, 0)", (table, names[kind]))
        for points, values in rows:
            marks = ", ?" * len(values)
            base.execute(f"INSERT INTO {table} (geom, sijaintitarkkuus, aineistolahde, alkupvm, kohderyhma, "
                         f"{', '.join(columns)}) VALUES (?, 5000, 1, '2020-05-01', 1{marks})",
                         (geometry(kind, points), *values))
    base.commit()
    base.close()


# ---- KuntaGML --------------------------------------------------------------------------------------------------------


def positions(points):
    return " ".join(f"{KANTA_EAST + x:.2f} {KANTA_NORTH + y:.2f} 9.50" for x, y in points)


def area(points):
    return ('<kanta:Sijainti><kanta:alue><gml:Polygon srsName="EPSG:3879" srsDimension="3"><gml:exterior><gml:LinearRing>'
            f"<gml:posList>{positions(points)}</gml:posList></gml:LinearRing></gml:exterior></gml:Polygon></kanta:alue>"
            "</kanta:Sijainti>")


def line(points, role="reunaviiva"):
    return (f'<kanta:Sijainti><kanta:{role}><gml:LineString srsName="EPSG:3879" srsDimension="3">'
            f"<gml:posList>{positions(points)}</gml:posList></gml:LineString></kanta:{role}></kanta:Sijainti>")


def point(x, y):
    return ('<kanta:Sijainti><kanta:referenssipiste><gml:Point srsName="EPSG:3879" srsDimension="3">'
            f"<gml:pos>{positions([(x, y)])}</gml:pos></gml:Point></kanta:referenssipiste></kanta:Sijainti>")


THINGS = [
    # element, sijainnit, other children
    ("Rakennus", point(5, 5) + area(box(0, 0, 10, 10)), {"tila": "käytössä", "kerrosluku": "II",
                                                          "rakennuksenKayttotarkoitus": "011", "korkeusasema": "21.4"}),
    ("Rakennus", area(box(20, 0, 20, 20)) + point(30, 10), {"tila": "käytössä", "kerrosluku": "1 1/2"}),
    ("Rakennus", area(box(50, 0, 20, 20)), {"tila": "suunniteltu", "kerrosluku": "9"}),
    ("Rakennus", area(box(80, 0, 20, 20)), {"rakennuksenKayttotarkoitus": "039"}),
    ("Rakennelma", area(box(110, 0, 4, 4)), {"kayttotarkoitus": "katos"}),
    ("Liikennevayla", line([(0, 50), (100, 50)], "keskilinja"), {"pinta": "kestopäällystetty"}),
    ("Kevyenliikenteenvayla", area(box(0, 60, 100, 3)), {"pinta": "kestopäällystämätön"}),
    ("MuuMaa-alue", area(box(0, 200, 60, 40)), {"tyyppi": "nurmikko"}),
    ("MuuMaa-alue", area(box(100, 200, 60, 40)), {"tyyppi": "piha-alue"}),
    ("Metsa", area(box(200, 200, 60, 40)), {"luokka": "havumetsä"}),
    ("Rakenne", line([(0, 300), (40, 300)]), {"tyyppi": "aita", "materiaali": "luonnonkivi", "korkeus": "0.8"}),
    ("Rakenne", line([(0, 310), (40, 310)]), {"tyyppi": "aita", "materiaali": "puu", "korkeus": "23.4"}),
    ("Lehtipuu", point(150, 60), {"suku": "koivu", "lapimitta": "0.3"}),
    ("Havupuurivi", line([(0, 320), (40, 320)]), {"suku": "kuusi"}),
]


def write_base_map(file):
    lines = ['<?xml version="1.0" encoding="UTF-8"?>',
             '<wfs:FeatureCollection xmlns:wfs="http://www.opengis.net/wfs" xmlns:gml="http://www.opengis.net/gml" '
             'xmlns:kanta="http://www.kuntatietopalvelu.fi/gml/kantakartta">']
    for number, (element, places, values) in enumerate(THINGS):
        children = "".join(f"<kanta:{name}>{value}</kanta:{name}>" for name, value in values.items())
        lines.append(f'<gml:featureMember><kanta:{element} gml:id="{element}.{number}"><kanta:yksilointitieto>{number}'
                     f"</kanta:yksilointitieto><kanta:alkuPvm>0001-01-01T00:00:00</kanta:alkuPvm><kanta:sijainnit>{places}"
                     f"</kanta:sijainnit>{children}</kanta:{element}></gml:featureMember>")
    file.write_text("\n".join(lines + ["</wfs:FeatureCollection>", ""]), encoding="utf-8")


if __name__ == "__main__":
    folder = pathlib.Path(sys.argv[1])
    write_geopackage(folder / "mtk.gpkg")
    write_base_map(folder / "kanta.gml")
