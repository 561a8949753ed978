"""Draws the anchor map with Mapnik, for bench/anchors.sh.

    python3 anchor_mapnik.py ANCHOR.json OUT.png

ANCHOR.json (written by anchors.sh) names the shapefiles, the classified field,
the class limits and colours, the extent and the picture size.
"""
import json
import sys

import mapnik


def polygon_style(rules):
    style = mapnik.Style()
    for expression, fill, outline, width in rules:
        rule = mapnik.Rule()
        if expression:
            rule.filter = mapnik.Expression(expression)
        if fill:
            poly = mapnik.PolygonSymbolizer()
            poly.fill = mapnik.Color(fill)
            rule.symbols.append(poly)
        line = mapnik.LineSymbolizer()
        line.stroke = mapnik.Color(outline)
        line.stroke_width = width
        rule.symbols.append(line)
        style.rules.append(rule)
    return style


def main():
    anchor = json.load(open(sys.argv[1]))
    srs = anchor["srs"]
    m = mapnik.Map(anchor["width"], anchor["height"], srs)
    m.background = mapnik.Color("white")
    field = anchor["field"]
    rules = []
    uppers = [c["upper"] for c in anchor["classes"]]
    for i, c in enumerate(anchor["classes"]):
        parts = []
        if i > 0:
            parts.append("[%s] > %r" % (field, uppers[i - 1]))
        if i + 1 < len(uppers):
            parts.append("[%s] <= %r" % (field, uppers[i]))
        rules.append((" and ".join(parts), c["rgb"], anchor["outline"], anchor["outline_width"]))
    m.append_style("comuni", polygon_style(rules))
    m.append_style("regioni", polygon_style([("", None, anchor["outline"], anchor["outline_width"])]))
    for name in ("comuni", "regioni"):  # bottom first
        layer = mapnik.Layer(name, srs)
        layer.datasource = mapnik.Shapefile(file=anchor["shapefiles"][name])
        layer.styles.append(name)
        m.layers.append(layer)
    m.zoom_to_box(mapnik.Box2d(*anchor["extent"]))
    mapnik.render_to_file(m, sys.argv[2], "png32")


if __name__ == "__main__":
    main()
