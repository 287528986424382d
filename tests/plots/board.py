#!/usr/bin/python3
"""A small circuit board, plotted by KiCad's library as HP-GL and as PostScript: board.py FOLDER"""
import sys

import pcbnew


def point(x, y):
    return pcbnew.wxPoint(pcbnew.FromMM(x), pcbnew.FromMM(y))


def board():
    result = pcbnew.BOARD()
    corners = [(50, 50), (130, 50), (130, 110), (50, 110)]
    for start, end in zip(corners, corners[1:] + corners[:1]):
        edge = pcbnew.PCB_SHAPE(result)
        edge.SetShape(pcbnew.SHAPE_T_SEGMENT)
        edge.SetStart(point(*start))
        edge.SetEnd(point(*end))
        edge.SetWidth(pcbnew.FromMM(0.2))
        edge.SetLayer(pcbnew.Edge_Cuts)
        result.Add(edge)
    for i in range(8):
        track = pcbnew.PCB_TRACK(result)
        track.SetStart(point(60 + 8 * i, 60))
        track.SetEnd(point(64 + 8 * i, 95))
        track.SetWidth(pcbnew.FromMM(0.4 + 0.1 * i))
        track.SetLayer(pcbnew.F_Cu)
        result.Add(track)
        via = pcbnew.PCB_VIA(result)
        via.SetPosition(point(60 + 8 * i, 60))
        via.SetWidth(pcbnew.FromMM(2.4))
        via.SetDrill(pcbnew.FromMM(0.8))
        result.Add(via)
    part = pcbnew.FOOTPRINT(result)
    part.SetPosition(point(90, 100))
    shapes = [pcbnew.PAD_SHAPE_CIRCLE, pcbnew.PAD_SHAPE_RECT, pcbnew.PAD_SHAPE_OVAL, pcbnew.PAD_SHAPE_ROUNDRECT]
    for i in range(8):
        pad = pcbnew.PAD(part)
        pad.SetShape(shapes[i % 4])
        pad.SetSize(pcbnew.wxSize(pcbnew.FromMM(3), pcbnew.FromMM(3 if i % 4 == 0 else 2)))
        pad.SetPosition(point(70 + 6 * i, 103))
        pad.SetLayerSet(pcbnew.PAD.PTHMask())
        pad.SetDrillSize(pcbnew.wxSize(pcbnew.FromMM(0.7), pcbnew.FromMM(0.7)))
        part.Add(pad)
    result.Add(part)
    text = pcbnew.PCB_TEXT(result)
    text.SetText('Board 42')
    text.SetPosition(point(90, 75))
    text.SetTextSize(pcbnew.wxSize(pcbnew.FromMM(4), pcbnew.FromMM(4)))
    text.SetTextThickness(pcbnew.FromMM(0.5))
    text.SetLayer(pcbnew.F_Cu)
    result.Add(text)
    return result


def main():
    control = pcbnew.PLOT_CONTROLLER(board())
    options = control.GetPlotOptions()
    options.SetOutputDirectory(sys.argv[1])
    options.SetPlotFrameRef(False)
    options.SetScale(1)
    options.SetDrillMarksType(pcbnew.PCB_PLOT_PARAMS.NO_DRILL_SHAPE)
    for mode, name in ((pcbnew.FILLED, 'filled'), (pcbnew.SKETCH, 'outlined')):
        options.SetPlotMode(mode)
        for kind in (pcbnew.PLOT_FORMAT_HPGL, pcbnew.PLOT_FORMAT_POST):
            control.OpenPlotfile(name, kind, '')
            for layer in (pcbnew.F_Cu, pcbnew.Edge_Cuts):
                control.SetLayer(layer)
                control.PlotLayer()
            control.ClosePlot()


main()
