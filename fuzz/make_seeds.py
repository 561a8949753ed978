#!/usr/bin/env python3
"""Writes the seed inputs of the fuzz targets into fuzz/corpus/<target>/.

Seeds come from the repository (tests/fixtures, data/sources), from an atlas
home built from data/sources (its settings files, default project and
shapefiles) and from small generated files that reach the corners of each
format. Every seed is kept small (a few KB) so that fuzzing stays fast.

    fuzz/make_seeds.py <atlas home>   (e.g. build/test-atlas/real)
"""
import json
import os
import struct
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
OUT = os.path.join(ROOT, "fuzz", "corpus")
HOME = sys.argv[1] if len(sys.argv) > 1 else os.path.join(ROOT, "build", "test-atlas", "real")


def put(target, name, data):
    os.makedirs(os.path.join(OUT, target), exist_ok=True)
    if isinstance(data, str):
        data = data.encode("utf-8")
    with open(os.path.join(OUT, target, name), "wb") as f:
        f.write(data)


def read(path):
    with open(path, "rb") as f:
        return f.read()


# --- settings ---------------------------------------------------------------
for name in ("citta.ini", "commont.ini", "comu_01.ini", "cmont_02.ini"):
    put("settings", name, read(os.path.join(HOME, "supporto", name)).replace(HOME.encode(), b"/atlante"))
classified = """[COMUNI]\r
JOIN=dati.dbf^C:/dati/^PRO_COM^PRO_COM^Dbase IV;^dati^\r
STRUCTJOIN=POP^QUOTA^\r
WORKSPACE=/atlante/italia/\r
BASE=comuni.shp^comuni^\r
SIMBOLO=2^0^0^16776960^33554432^\r
LABEL=NOME\r
TIPOCLASSIFICAZIONE=2\r
CAMPO=POP^0^7^1^\r
CLASSIFICAZIONE=0^0 - 1000^1^255^fino a 1000^0^1^0^1000 - 5000,5^1^65280^^0^1^\r
OUTLINE=0\r
VISIBILE=1\r
"""
put("settings", "classificato.ini", classified)
put("settings", "latin1.ini", "[Tema]\nLABEL=Località\nBASE=città.shp^città^\n".encode("latin-1"))
put("settings", "rotto.ini", "[senza chiusura\nKEY\n=valore\n[]\n  CHIAVE  =  x  \n[A]\n[a]\nCLASSIFICAZIONE=^^^\n")

# --- project ----------------------------------------------------------------
project = read(os.path.join(HOME, "supporto", "default.rlx")).replace(HOME.encode(), b"/atlante")
put("project", "default.rlx", project)
put("project", "breve.rlx", "[RLX]\nDBFCOMMONT=cm_01^\nEXTENT=1.5^-2e3^1e308^0^\n" + classified.replace("\r", ""))
put("project", "senza_extent.rlx", "[RLX]\nDBFCOMMONT=^\n[../fuori]\nBASE=x^\n")
put("project", "crlf.rlx", "[RLX]\r\nEXTENT=nan^inf^-0^1^\r\n[comuni]\r\nVISIBILE=1\r\n\r")

# --- report -----------------------------------------------------------------
report = """[General]
Version = VideoSoft Data Reporter (VB5/DAO) (6.0.1)

[RecordSource]
DataBaseName = /atlante/dati/mervola.sqlite
RecordSource = TempRpt

[GlobalInfo]
ReportTitle = Mervola
Header = <db>|<rs>|Page <p> of <n>
Footer =  | |<tt>, <ddd>
Top = 1440
Bottom = 1440
Left = 1440
Right = 720
WordWrap = True
MaxHeight = 2880
Orientation = 0
[Style Title]
Size = 14
Bold = True
BackColor = &H00C0C0C0&

[Fields]
Count = 2

[Field 1]
ID = LABEL
Title = Nome
Width = 0

[Field 2]
ID = POP
Title = Popolazione <p>

[Headers]
Count = 0

[Detail]
Count = 2
Field1 = LABEL
Field2 = POP
"""
put("report", "tabella.vrd", report)
put("report", "orizzontale.vrd", report.replace("Orientation = 0", "Orientation = 1").replace("Count = 2", "Count = 99"))
put("report", "numeri.vrd", "[GlobalInfo]\nTop = -5\nLeft = 99999999999\nMaxHeight = x\n[Fields]\nCount = -1\n[Style ]\nSize = 1e400\n")

# --- dBase: first byte picks the .cpg (0 none, 1 UTF-8, 2 ISO-8859-1, 3 CP1252 ...)
def dbf_head(dbf, records):
    """The header and the first `records` records, with the count patched."""
    header_len, record_len = struct.unpack("<HH", dbf[8:12])
    body = dbf[header_len:header_len + records * record_len]
    return dbf[:4] + struct.pack("<I", records) + dbf[8:header_len] + body + b"\x1a"


for name in ("latin1.dbf", "people.dbf"):
    put("dbase", name, b"\x02" + read(os.path.join(ROOT, "tests", "fixtures", name)))
put("dbase", "blockgroups.dbf", b"\x00" + dbf_head(read(os.path.join(ROOT, "tests", "fixtures", "blockgroups.dbf")), 4))
put("dbase", "citta.dbf", b"\x01" + dbf_head(read(os.path.join(HOME, "italia", "citta.dbf")), 5))
put("dbase", "cmont.dbf", b"\x03" + dbf_head(read(os.path.join(HOME, "italia", "cmont_01.dbf")), 3))


def make_dbf(fields, rows, version=3, language=0):
    """fields: (name, type, width, decimals)."""
    record_len = 1 + sum(f[2] for f in fields)
    header_len = 32 + 32 * len(fields) + 1
    out = struct.pack("<BBBBIHH", version, 126, 1, 1, len(rows), header_len, record_len)
    out += b"\x00" * 17 + bytes([language]) + b"\x00\x00"
    for name, typ, width, dec in fields:
        out += name.encode("latin-1").ljust(11, b"\x00") + typ.encode() + b"\x00" * 4
        out += bytes([width, dec]) + b"\x00" * 14
    out += b"\r"
    for deleted, values in rows:
        out += b"*" if deleted else b" "
        for (name, typ, width, dec), v in zip(fields, values):
            out += v.encode("latin-1")[:width].ljust(width) if typ != "N" else v.encode().rjust(width)[:width]
    return out + b"\x1a"


kinds = [("NOME", "C", 12, 0), ("POP", "N", 8, 0), ("QUOTA", "F", 10, 3), ("OK", "L", 1, 0),
         ("DATA", "D", 8, 0), ("NOTE", "M", 10, 0)]
put("dbase", "tipi.dbf", b"\x04" + make_dbf(kinds, [(False, ["Aosta", "34000", "583.500", "T", "20010102", "1"]),
                                                      (True, ["Cancellato", "1", "1", "F", "19991231", ""]),
                                                      (False, ["Città", "*******", "", "?", "", ""])], 0x83, 0x57))
put("dbase", "vuota.dbf", b"\x05" + make_dbf([("A", "C", 1, 0)], []))

# --- text sources -------------------------------------------------------------
lines = read(os.path.join(ROOT, "data", "sources", "comuni_attributi.csv")).split(b"\n")
put("textsource", "comuni.csv", b"\n".join(lines[:25]) + b"\n")
put("textsource", "puntoevirgola.txt", "\ufeffCODICE;NOME;POP;QUOTA\r\n001001;\"Agliè\";2574;315,5\r\n001002;Airasca;3554;\r\n\"001003\";\"Ala di \"\"Stura\"\"\";;1.5\r\n")
put("textsource", "tab.txt", "A\tB\tC\n1\t2\n3\t4\t5\t6\n\t\t\n".encode("utf-8"))
put("textsource", "cp1252.txt", "NOME,VALORE\nCittà,1\n\u20acuro,2\n".encode("cp1252"))
put("textsource", "aperta.txt", "X;Y\n\"non chiusa;1\n2;3\n")

# --- Access: a database cut after its catalog, and the helper's stream ------
mdb = read(os.path.join(ROOT, "tests", "fixtures", "testV1997.mdb"))
put("access", "testV1997-testa.mdb", mdb[:16 * 2048])
put("access", "testV1997-meta.mdb", mdb[:32 * 2048])
put("access", "vuoto.mdb", b"\x00\x01\x00\x00Standard Jet DB\x00" + b"\x00" * 2028)


def qstring(s):
    b = s.encode("utf-16-be")
    return struct.pack(">I", len(b)) + b


def qbytes(b):
    return struct.pack(">I", 0xFFFFFFFF) if b is None else struct.pack(">I", len(b)) + b


stream = struct.pack(">I", 0x4D564143) + struct.pack(">i", 2) + qstring("NOME") + struct.pack(">ii", 10, 50)
stream += qstring("POP") + struct.pack(">ii", 4, 4)
stream += b"\x01" + qbytes(b"Aosta") + qbytes(b"34000") + b"\x01" + qbytes(None) + qbytes(b"") + b"\x00"
put("access", "flusso-righe.bin", stream + struct.pack(">I", 0x454E4421))
put("access", "flusso-nomi.bin", struct.pack(">I", 0x4D564143) + struct.pack(">I", 2) + qstring("Tabella1")
    + qstring("Comuni") + struct.pack(">I", 0x454E4421))

# --- TopoJSON: a few municipalities of a small region, with their arcs ---------
topo = json.loads(read(os.path.join(ROOT, "data", "sources", "boundaries", "limits_R_2_municipalities.topo.json")))


def arc_refs(geometry):
    if geometry.get("type") == "Polygon":
        return [a for ring in geometry["arcs"] for a in ring]
    if geometry.get("type") == "MultiPolygon":
        return [a for poly in geometry["arcs"] for ring in poly for a in ring]
    return []


def subset(indexes):
    geoms = [topo["objects"]["comuni"]["geometries"][i] for i in indexes]
    used = sorted({a if a >= 0 else ~a for g in geoms for a in arc_refs(g)})
    renumber = {old: new for new, old in enumerate(used)}

    def fix(x):
        if isinstance(x, list):
            return [fix(y) for y in x]
        return renumber[x] if x >= 0 else ~renumber[~x]

    out = {"type": "Topology", "transform": topo["transform"], "arcs": [topo["arcs"][i] for i in used],
           "objects": {"comuni": {"type": "GeometryCollection", "geometries": []}}}
    for g in geoms:
        g = dict(g)
        g["arcs"] = fix(g["arcs"])
        out["objects"]["comuni"]["geometries"].append(g)
    return json.dumps(out, separators=(",", ":"))


def small_enough(indexes):
    return len(subset(indexes)) < 12000


n = len(topo["objects"]["comuni"]["geometries"])
sizes = sorted(range(n), key=lambda i: len(subset([i])))
put("topojson", "vda-1.json", subset(sizes[:1]))
put("topojson", "vda-3.json", subset(sizes[:3]))
put("topojson", "vda-vicini.json", subset(sizes[:6]) if small_enough(sizes[:6]) else subset(sizes[:4]))
put("topojson", "nulla-multi.json", json.dumps({
    "type": "Topology", "transform": {"scale": [1, 1], "translate": [0, 0]},
    "arcs": [[[0, 0], [10, 0], [0, 10], [-10, 0], [0, -10]], [[20, 20], [5, 0], [0, 5], [-5, -5]]],
    "objects": {"comuni": {"type": "GeometryCollection", "geometries": [
        {"type": None, "properties": {"PRO_COM": 1}},
        {"type": "MultiPolygon", "arcs": [[[0]], [[1]]], "properties": {"PRO_COM": 2, "NOME": "Due"}},
        {"type": "Polygon", "arcs": [[~0]], "properties": {}}]}}}))

# --- conditions -----------------------------------------------------------------
conditions = {
    "confronto.txt": "POP > 1000 and QUOTA <= 600,5",
    "testo.txt": "NOME = 'L''Aquila' or NOME like 'A*'",
    "funzioni.txt": "Mid(NOME, 2, 3) = 'ost' and Len(NOME) > 3 and IIf(POP > 1, 1, 0) = 1",
    "nulli.txt": "Nz(NOME, 'x') = 'x' and Val(Label) = 3 and CStr(POP) <> ''",
    "booleani.txt": "FLAG = True or FLAG = No and not (POP between 1 and 2)",
    "due_istruzioni.txt": "POP > 1; DELETE * FROM t",
    "commento.txt": "POP > 1 -- ORDER BY",
    "parentesi.txt": "((POP > 1) and [QUOTA] > 0",
    "numero.txt": "12,5",
    "concatena.txt": "NOME & 'x' = 'Aostax' and UCase(NOME) = LCase(NOME) and Int(QUOTA) = Fix(QUOTA)",
    "date.txt": "DATA = #2001-01-02# or DATA is null",
}
for name, text in conditions.items():
    put("condition", name, text)


# --- shapefiles: <shp length><shx length> .shp .shx .dbf (code-page byte first) ---
def shp_header(shape_type, length_bytes, bbox=(0, 0, 10, 10)):
    return struct.pack(">7i", 9994, 0, 0, 0, 0, 0, length_bytes // 2) + struct.pack(
        "<2i4d4d", 1000, shape_type, *bbox, 0, 0, 0, 0)


def shapefile(shape_type, contents, dbf):
    shp, shx, offset = b"", b"", 100
    for i, c in enumerate(contents):
        shp += struct.pack(">2i", i + 1, len(c) // 2) + c
        shx += struct.pack(">2i", offset // 2, len(c) // 2)
        offset += 8 + len(c)
    shp = shp_header(shape_type, 100 + len(shp)) + shp
    shx = shp_header(shape_type, 100 + len(shx)) + shx
    return struct.pack("<HH", len(shp), len(shx)) + shp + shx + b"\x01" + dbf


def poly(shape_type, parts):
    points = [p for part in parts for p in part]
    starts, at = [], 0
    for part in parts:
        starts.append(at)
        at += len(part)
    out = struct.pack("<i4d2i", shape_type, 0, 0, 10, 10, len(parts), len(points))
    out += struct.pack("<%di" % len(parts), *starts)
    return out + b"".join(struct.pack("<2d", *p) for p in points)


square = [(0, 0), (0, 10), (10, 10), (10, 0), (0, 0)]
hole = [(2, 2), (4, 2), (4, 4), (2, 4), (2, 2)]
two = make_dbf([("NOME", "C", 10, 0), ("POP", "N", 6, 0)], [(False, ["uno", "1"]), (False, ["due", "2"])])
put("shapefile", "poligoni.bin", shapefile(5, [poly(5, [square, hole]), poly(5, [square])], two))
put("shapefile", "linee.bin", shapefile(3, [poly(3, [square[:2], square[2:]]), struct.pack("<i", 0)], two))
put("shapefile", "punti.bin", shapefile(1, [struct.pack("<i2d", 1, 1.5, 2.5), struct.pack("<i2d", 1, 3, 4)], two))
put("shapefile", "multipunti-z.bin", shapefile(18, [struct.pack("<i4di4d2d2d", 18, 0, 0, 1, 1, 2, 0, 0, 1, 1, 0, 1, 5, 6)],
                                               make_dbf([("A", "C", 1, 0)], [(False, ["x"])])))
# The real capoluoghi, cut to their first five points.
real = read(os.path.join(HOME, "italia", "citta.shp"))
real_shx = read(os.path.join(HOME, "italia", "citta.shx"))
records = [struct.unpack(">2i", real_shx[100 + 8 * i:108 + 8 * i]) for i in range(5)]
contents = [real[off * 2 + 8: off * 2 + 8 + length * 2] for off, length in records]
head = shapefile(1, contents, dbf_head(read(os.path.join(HOME, "italia", "citta.dbf")), 5))
put("shapefile", "citta.bin", head)

for target in sorted(os.listdir(OUT)):
    files = os.listdir(os.path.join(OUT, target))
    total = sum(os.path.getsize(os.path.join(OUT, target, f)) for f in files)
    print(f"{target:12} {len(files):3} files {total:8} bytes")
