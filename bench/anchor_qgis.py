"""Draws the anchor map with QGIS, for bench/anchors.sh.

    python3 anchor_qgis.py ANCHOR.json OUT.png

Same ANCHOR.json as anchor_mapnik.py.
"""
import json
import os
import sys

os.environ.setdefault("QT_QPA_PLATFORM", "offscreen")

from qgis.core import (QgsApplication, QgsFillSymbol, QgsGraduatedSymbolRenderer, QgsMapRendererParallelJob,
                       QgsMapSettings, QgsRectangle, QgsRendererRange, QgsSingleSymbolRenderer, QgsVectorLayer)
from qgis.PyQt.QtCore import QSize
from qgis.PyQt.QtGui import QColor


def fill(anchor, colour):
    props = {"outline_color": anchor["outline"], "outline_width": str(anchor["outline_width"]),
             "outline_width_unit": "Pixel"}
    if colour:
        props["color"] = colour
    else:
        props["style"] = "no"
    return QgsFillSymbol.createSimple(props)


def main():
    anchor = json.load(open(sys.argv[1]))
    QgsApplication.setPrefixPath("/usr", True)
    app = QgsApplication([], False)
    app.initQgis()
    comuni = QgsVectorLayer(anchor["shapefiles"]["comuni"], "comuni", "ogr")
    regioni = QgsVectorLayer(anchor["shapefiles"]["regioni"], "regioni", "ogr")
    ranges = []
    lower = -1e300
    for c in anchor["classes"]:
        ranges.append(QgsRendererRange(lower, c["upper"], fill(anchor, c["rgb"]), c["text"]))
        lower = c["upper"]
    comuni.setRenderer(QgsGraduatedSymbolRenderer(anchor["field"], ranges))
    regioni.setRenderer(QgsSingleSymbolRenderer(fill(anchor, None)))
    settings = QgsMapSettings()
    settings.setLayers([regioni, comuni])  # top first
    settings.setDestinationCrs(comuni.crs())
    settings.setOutputSize(QSize(anchor["width"], anchor["height"]))
    settings.setExtent(QgsRectangle(*anchor["extent"]))
    settings.setBackgroundColor(QColor("white"))
    settings.setFlag(QgsMapSettings.Antialiasing, True)
    job = QgsMapRendererParallelJob(settings)
    job.start()
    job.waitForFinished()
    job.renderedImage().save(sys.argv[2], "png")
    # Layers must go before the application, else QGIS crashes on exit.
    del job, settings, comuni, regioni
    app.exitQgis()


if __name__ == "__main__":
    main()
