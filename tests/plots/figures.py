"""Figures by programs that write plots, each as a plot and as PostScript."""
import gzip
import math
import os
import subprocess
from pathlib import Path

TEKTRONIX = Path('/usr/share/doc/plotutils/tek2plot')

PIC = '''.PS
box "start"; arrow; circle "one"; arrow dashed; ellipse "two" wid 1; arrow; box "three" dashed
move to last box.s; down; arrow; box "four" rad 0.1
arc from last box.w cw to 1st circle.s
line dotted from 1st box.s down 1 right 1 then right 1
spline from last box.e right 0.5 then down 0.5 left 0.5 then down 0.4 right 1 ->
circle rad 0.3 fill 0.4 at 1st box.s - (0,1.5)
box wid 0.8 ht 0.5 fill 0.8 at 1st box.s - (-1.2,2)
.PE
'''

FIG = '''#FIG 3.2
Landscape
Center
Metric
A4
100.00
Single
-2
1200 2
1 3 0 1 0 7 50 -1 -1 0.000 1 0.0000 3600 2700 900 900 3600 2700 4500 2700
1 1 0 2 0 7 50 -1 -1 0.000 1 0.0000 6300 2700 1200 600 6300 2700 7500 3300
2 2 0 3 0 7 50 -1 -1 0.000 0 0 -1 0 0 5
 1800 4500 4500 4500 4500 6300 1800 6300 1800 4500
2 1 0 1 0 7 50 -1 -1 0.000 0 0 -1 0 0 6
 5400 4500 6300 6300 7200 4500 8100 6300 9000 4500 9900 6300
2 3 0 1 0 7 50 -1 -1 0.000 0 0 -1 0 0 4
 8100 1800 10800 1800 9450 3600 8100 1800
3 2 0 1 0 7 50 -1 -1 0.000 0 0 0 5
 1800 7200 3600 6600 5400 7800 7200 6600 9900 7200
 0.000 -1.000 -1.000 -1.000 0.000
'''

FIG_DASHES = '''#FIG 3.2
Landscape
Center
Metric
A4
100.00
Single
-2
1200 2
''' + ''.join(f'''2 1 {style} {width} 0 7 50 -1 -1 {gap} 0 0 -1 0 0 3
 1800 {y} 6000 {y} 9900 {y + 600}
''' for style, width, gap, y in ((0, 1, '0.000', 1200), (1, 1, '4.000', 2400), (1, 2, '8.000', 3600), (2, 1, '3.000', 4800), (0, 4, '0.000', 6000)))

POSTSCRIPT = '''%!PS-Adobe-3.0 EPSF-3.0
%%BoundingBox: 40 40 560 560
%%EndComments
1 setlinecap 1 setlinejoin
'''

STAR = POSTSCRIPT + '''
0.8 setlinewidth
0 10 350 { newpath gsave 300 300 translate rotate 40 0 moveto 250 0 lineto 240 12 lineto stroke grestore } for
3 setlinewidth newpath 300 300 30 0 360 arc stroke
newpath 60 60 moveto 540 60 lineto 540 540 lineto 60 540 lineto closepath stroke
showpage
'''

CURVES = POSTSCRIPT + '''
1 setlinewidth
0 1 11 { /i exch def newpath 60 60 moveto 60 i 40 mul add 500 540 i 40 mul sub 100 540 540 curveto stroke } for
newpath 60 60 480 480 4 copy pop pop pop pop 60 60 moveto 540 60 lineto 540 540 lineto 60 540 lineto closepath stroke
showpage
'''

FILLS = POSTSCRIPT + '''
0 setgray
0 1 3 { /r exch def 0 1 3 { /c exch def
  newpath 80 c 120 mul add 80 r 120 mul add moveto
  90 0 rlineto 0 30 r 15 mul add rlineto -60 c 5 mul sub 20 rlineto closepath fill } for } for
1 setlinewidth newpath 60 60 moveto 540 60 lineto 540 540 lineto 60 540 lineto closepath stroke
showpage
'''

SVG = '''<svg xmlns="http://www.w3.org/2000/svg" width="180mm" height="120mm" viewBox="0 0 180 120">
<g fill="none" stroke="black" stroke-width=".35"><rect x="10" y="10" width="160" height="100"/>
<circle cx="50" cy="60" r="30"/><path d="M90 90 C100 20 140 20 150 90 Z"/><path d="M20 20 L60 25 L40 40 Z"/>
<ellipse cx="130" cy="40" rx="25" ry="10"/><path d="M90 100 h60 M90 103 h60"/></g></svg>
'''
INKSCAPE_WRITER = Path('/usr/share/inkscape/extensions/hpgl_output.py')

# The same margins in every terminal, whatever its letters, and a frame that cuts all pictures alike.
GNUPLOT_FRAME = 'set object 1 rectangle from screen .005,.005 to screen .995,.995 fs empty; '
GNUPLOT_LAYOUT = GNUPLOT_FRAME + 'set lmargin at screen .12; set rmargin at screen .95; ' \
    'set tmargin at screen .93; set bmargin at screen .12; '

GNUPLOT = {
    'waves': 'set samples 400; plot [-10:10] sin(x) title "sin", cos(x/2)*0.8 title "cos", sin(x)/x title "sinc"',
    'surface': 'set isosamples 30; set hidden3d; splot [-3:3][-3:3] exp(-x*x-y*y)*x notitle',
    'contour': 'set isosamples 40; set contour base; unset surface; set view map; splot [-3:3][-3:3] x*x-y*y+sin(3*x) notitle',
    'points': 'set samples 40; plot [0:10] sin(x) with points title "p", 0.5*x/10 with linespoints title "lp", '
              '-0.3+0.1*cos(x) with impulses title "i"',
    'boxes': 'set samples 15; set style fill empty; plot [0:10][0:*] 2+sin(x) with boxes title "boxes"',
    'polar': 'set polar; set samples 500; set grid polar; plot [0:2*pi] sin(4*t) notitle, cos(3*t) notitle',
    'log': 'set logscale xy; set grid; plot [1:1000] x**1.5 title "a", 100*log(x)+1 title "b"',
}

GROFF = '''.LP
A page with rules and a figure.
.PS
box "left"; arrow; circle "mid"; arrow; box dashed "right"
line from 1st box.s down 0.8; spline right 1 then up 0.3 right 0.5 then down 0.6 right 1
ellipse wid 1.2 ht 0.5 at last circle - (0,1.3)
.PE
.TS
box tab(;);
c|c|c
_
l|n|n.
item;count;price
one;12;3.50
two;7;19.95
.TE
Below the table \\(em a fraction and a root:
.EQ
x = {-b +- sqrt {b sup 2 - 4 a c}} over {2 a}
.EN
'''


def run(command, stdin=None, env=None):
    result = subprocess.run(command, input=stdin, capture_output=True, env={**os.environ, **(env or {})}, timeout=120)
    return result.stdout


def series(count, function):
    return '\n'.join(f'{x / 10} {function(x / 10)}' for x in range(count)).encode()


def graph(arguments, data, env=None):
    """graph as PCL 5 or HP-GL, and as PostScript."""
    def make(kind):
        return run(['graph', '-T', kind, *arguments], data, env)
    return make


def tektronix(name):
    path = TEKTRONIX / name
    data = gzip.decompress(path.read_bytes()) if path.suffix == '.gz' else path.read_bytes()
    return lambda kind: run(['tek2plot', '-T', kind, '-F', 'HersheySans'], data)


def figures(folder):
    """Yields (name, plot bytes, PostScript bytes, extension of the plot)."""
    stroked = ['-F', 'HersheySans']
    curve = series(100, lambda x: math.sin(x) * 3)
    both = curve + b'\n\n' + series(100, lambda x: x * x / 30)
    growth = series(90, lambda x: math.exp(x / 2) + 1)
    plots = {
        'graph-curve': graph([*stroked, '-L', 'Curve', '-X', 'time', '-Y', 'value'], curve),
        'graph-grid': graph([*stroked, '-g', '3', '-L', 'Grid'], both),
        'graph-markers': graph([*stroked, '-m', '-2', '-S', '4', '0.03'], curve),
        'graph-logarithmic': graph([*stroked, '-l', 'y', '-g', '2'], growth),
        'graph-dashes': graph([*stroked, '-m', '3', '-W', '0.004'], both),
        'graph-filled': graph([*stroked, '-q', '0.4'], curve),
        'graph-colour': graph([*stroked, '-C', '-m', '2', '-W', '0.006'], both),
        'graph-printer-font': graph(['-L', 'Printer font', '-X', 'abscissa', '-Y', 'ordinate'], curve),
        'graph-serif': graph(['-F', 'HersheySerif-Italic', '-L', 'Title in italics', '-f', '0.06'], curve),
    }
    for name, make in plots.items():
        yield name + '.pcl', make('pcl'), make('ps'), 'pcl'
    for name in ('graph-curve', 'graph-grid', 'graph-filled', 'graph-printer-font'):
        yield name + '.hpgl', plots[name]('hpgl'), plots[name]('ps'), 'plt'
    for version in ('1', '1.5'):
        data = run(['graph', '-T', 'hpgl', *stroked, '-g', '3', '-L', 'Grid'], both, {'HPGL_VERSION': version})
        yield f'graph-grid.hpgl{version}', data, plots['graph-grid']('ps'), 'plt'
    for face in ('HersheySerif', 'HersheyGothicEnglish', 'HersheySans-Bold'):
        make = lambda kind: run(['plotfont', '-T', kind, face])
        yield f'plotfont-{face}', make('pcl'), make('ps'), 'pcl'
    for name in ('dmerc.tek.gz', 'skymap.tek.gz', 'aitest.tek.gz', 'ocpred.tek', 'imtesth.tek', 'karney.tek.gz'):
        if (TEKTRONIX / name).exists():
            make = tektronix(name)
            yield 'tek2plot-' + name.split('.')[0], make('pcl'), make('ps'), 'pcl'
            if name.startswith('dmerc'):
                yield 'tek2plot-dmerc.hpgl', make('hpgl'), make('ps'), 'plt'
    for extra in (['-F', 'HersheySans'], []):
        make = lambda kind: run(['pic2plot', '-T', kind, *extra], PIC.encode())
        yield 'pic2plot' + ('-hershey' if extra else '-printer-font'), make('pcl'), make('ps'), 'pcl'
    lorenz = run(['ode', '-s'], b"x'=-3*(x-y)\ny'=-x*z+r*x-y\nz'=x*y-z\nr=26\nx=0;y=1;z=0\nprint x,y\nstep 0,60\n")
    make = graph([*stroked, '-C'], lorenz)
    yield 'ode-lorenz', make('pcl'), make('ps'), 'pcl'
    bent = run(['spline', '-n', '300'], b'0 0\n1 3\n2 -1\n3 4\n4 2\n5 5\n')
    make = graph(stroked, bent)
    yield 'spline', make('hpgl'), make('ps'), 'plt'

    for name, script in GNUPLOT.items():
        layout = GNUPLOT_FRAME if name == 'surface' else GNUPLOT_LAYOUT
        # The plots' own shapes: 10 x 7.2 for a desktop plotter, 10.16 x 7.2 inches for PCL 5.
        for terminal, extension in (('hpgl', 'plt'), ('pcl5', 'pcl')):
            plot = run(['gnuplot', '-e', f'set term {terminal}; {layout}{script}'])
            postscript = run(['gnuplot', '-e', f'set term postscript landscape color solid "Helvetica" 10; {layout}{script}'])
            yield f'gnuplot-{name}.{terminal}', plot, postscript, extension
    for name in ('waves', 'boxes', 'polar'):
        plot = run(['gnuplot', '-e', f'set term hppj; {GNUPLOT_LAYOUT}{GNUPLOT[name]}'])
        yield f'gnuplot-{name}.hppj', plot, \
            run(['gnuplot', '-e', f'set term postscript landscape color solid "Helvetica" 14; {GNUPLOT_LAYOUT}{GNUPLOT[name]}']), 'prn'

    for name, text in (('star', STAR), ('curves', CURVES), ('fills', FILLS)):
        source = Path(folder) / f'pstoedit-{name}.ps'
        source.write_text(text)
        for kind, extension in (('hpgl', 'plt'), ('hpgl:-hpgl2', 'plt'), ('plot-hpgl', 'plt'), ('plot-pcl', 'pcl')):
            target = Path(folder) / 'pstoedit.out'
            target.unlink(missing_ok=True)
            run(['pstoedit', '-q', '-f', kind, str(source), str(target)])
            if target.exists():
                yield f'pstoedit-{name}.{kind.replace(":-", "-")}', target.read_bytes(), text.encode(), extension
    for name, text in (('shapes', FIG), ('dashes', FIG_DASHES)):
        source = Path(folder) / f'{name}.fig'
        source.write_text(text)
        yield f'fig2dev-{name}', run(['fig2dev', '-L', 'ibmgl', str(source)]), \
            run(['fig2dev', '-L', 'ps', str(source)]), 'plt'
    yield 'groff-rules', run(['groff', '-Tlj4', '-p', '-t', '-e', '-ms'], GROFF.encode()), \
        run(['groff', '-Tps', '-p', '-t', '-e', '-ms'], GROFF.encode()), 'pcl'
    if INKSCAPE_WRITER.exists():
        source = Path(folder) / 'figure.svg'
        source.write_text(SVG)
        yield 'inkscape-figure', run(['/usr/bin/python3', str(INKSCAPE_WRITER), str(source)]), \
            run(['rsvg-convert', '-f', 'eps', str(source)]), 'plt'
    run(['/usr/bin/python3', str(Path(__file__).parent / 'board.py'), str(folder)])
    for mode in ('filled', 'outlined'):
        plots = sorted(Path(folder).glob(f'*{mode}.plt'))
        if plots:
            yield f'kicad-board-{mode}', plots[0].read_bytes(), plots[0].with_suffix('.ps').read_bytes(), 'plt'
