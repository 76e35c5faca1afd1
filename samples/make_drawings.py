#!/usr/bin/env python3
"""Makes the drawings of this folder, in inches: rose.dxf, rosette.plt, board.gbr, board.nc, relief.bmp.

Run it in this folder. The same call always makes the same bytes.
"""
import math
import struct


def write(name, lines):
    with open(name, "wb") as file:
        file.write("".join(line + "\r\n" for line in lines).encode("ascii"))


# --- rose.dxf: a compass rose of 5 inches, on the layers RING, ROSE and LETTERS ---------------------

CENTRE = 3.0


def at(radius, degrees):
    angle = math.radians(degrees)
    return CENTRE + radius * math.cos(angle), CENTRE + radius * math.sin(angle)


def outline(layer, points, closed=True):
    pairs = ["0", "LWPOLYLINE", "8", layer, "90", str(len(points)), "70", "1" if closed else "0"]
    for x, y in points:
        pairs += ["10", f"{x:.4f}", "20", f"{y:.4f}"]
    return pairs


def line(layer, start, end):
    return ["0", "LINE", "8", layer, "10", f"{start[0]:.4f}", "20", f"{start[1]:.4f}",
            "11", f"{end[0]:.4f}", "21", f"{end[1]:.4f}"]


def rose():
    pairs = ["0", "SECTION", "2", "HEADER", "9", "$INSUNITS", "70", "1", "0", "ENDSEC"]  # inches
    pairs += ["0", "SECTION", "2", "ENTITIES"]
    for radius in (2.0, 1.9):
        pairs += outline("RING", [at(radius, step * 2) for step in range(180)])
    for step in range(72):
        inner = 1.72 if step % 6 == 0 else 1.8
        pairs += line("RING", at(inner, step * 5), at(1.9, step * 5))
    # Eight points: the four winds in front of the four between them.
    for length, width, turn in ((1.05, 0.3, 45), (1.65, 0.36, 0)):
        star = []
        for wind in range(4):
            star.append(at(length, turn + 90 * wind))
            star.append(at(width, turn + 90 * wind + 45))
        pairs += outline("ROSE", star)
        for wind in range(4):
            pairs += line("ROSE", at(0, 0), at(length, turn + 90 * wind))
            pairs += line("ROSE", at(0, 0), at(width, turn + 90 * wind + 45))
    for (x, y), strokes in {
        (CENTRE, CENTRE + 2.25): [[(-1, -1), (-1, 1), (1, -1), (1, 1)]],
        (CENTRE, CENTRE - 2.25): [[(1, 0.7), (0.6, 1), (-0.6, 1), (-1, 0.7), (-1, 0.3), (-0.6, 0),
                                   (0.6, 0), (1, -0.3), (1, -0.7), (0.6, -1), (-0.6, -1),
                                   (-1, -0.7)]],
        (CENTRE + 2.25, CENTRE): [[(1, -1), (-1, -1), (-1, 1), (1, 1)], [(-1, 0), (0.7, 0)]],
        (CENTRE - 2.25, CENTRE): [[(-1.2, 1), (-0.6, -1), (0, 0.6), (0.6, -1), (1.2, 1)]],
    }.items():
        for stroke in strokes:
            letter = [(x + 0.11 * u, y + 0.15 * v) for u, v in stroke]
            pairs += outline("LETTERS", letter, closed=False)
    return pairs + ["0", "ENDSEC", "0", "EOF"]


# --- rosette.plt: five nested curves of a spirograph; 1016 units an inch ----------------------------

def rosette():
    text = ["IN;", "SP1;"]
    for ring in range(5):
        points = []
        for step in range(361):
            turn = math.radians(step)
            radius = 1.0 + 0.18 * ring + (0.12 + 0.05 * ring) * math.cos(12 * turn + 0.4 * ring)
            points.append((round(1016 * (2.5 + radius * math.cos(turn))),
                           round(1016 * (2.5 + radius * math.sin(turn)))))
        text.append(f"PU{points[0][0]},{points[0][1]};")
        text += [f"PD{x},{y};" for x, y in points[1:]]
    return text + ["PU0,0;", "SP0;"]


# --- board.gbr, board.nc: a small board with its holes; 2.3 digits ----------------------------------

PADS = [(500 + 100 * pin, 500 + 300 * row) for row in (0, 1) for pin in range(7)]
HOLES = [(200, 200), (1600, 200), (200, 1100), (1600, 1100)]


def board():
    def word(x, y, d):
        return f"X{x:05d}Y{y:05d}D0{d}*"

    text = ["%FSLAX23Y23*%", "%MOIN*%", "%ADD10C,0.06*%", "%ADD11R,0.06X0.06*%", "%ADD12C,0.025*%",
            "%ADD13C,0.02*%", "%LNCOPPER*%", "D11*", word(*PADS[0], 3), "D10*"]
    text += [word(x, y, 3) for x, y in PADS[1:]]
    text.append("D12*")
    for pin in range(7):
        x, low, high = 500 + 100 * pin, 500, 800
        bend = 320 - 20 * abs(pin - 3)
        text += [word(x, low, 2), word(x, bend, 1), word(350 + 150 * pin, bend - 120, 1)]
        top = 980 + 20 * abs(pin - 3)
        text += [word(x, high, 2), word(x, top, 1), word(350 + 150 * pin, top + 90, 1)]
    text += ["%LNMARKS*%", "D13*"]
    corners = [(100, 100), (1700, 100), (1700, 1200), (100, 1200), (100, 100)]
    text += [word(*corners[0], 2)] + [word(x, y, 1) for x, y in corners[1:]]
    for x, y in HOLES:
        text += [word(x - 50, y, 2), word(x + 50, y, 1), word(x, y - 50, 2), word(x, y + 50, 1)]
    return text + ["M02*"]


def drills():
    text = ["M48", "INCH,TZ,00.000", "T01C0.032", "T02C0.125", "%", "T01"]
    text += [f"X{x:05d}Y{y:05d}" for x, y in PADS]
    text.append("T02")
    text += [f"X{x:05d}Y{y:05d}" for x, y in HOLES]
    return text + ["M30"]


# --- relief.bmp: rings on water, 8 bits a pixel ------------------------------------------------------

def relief(size=96):
    pixels = bytearray()
    for y in range(size):
        for x in range(size):
            u, v = (2 * x + 1) / size - 1, (2 * y + 1) / size - 1
            distance = math.hypot(u, v)
            wave = math.cos(5 * math.pi * distance) * math.exp(-1.5 * distance)
            pixels.append(round(255 * (0.5 + 0.5 * wave)))
    grey = b"".join(bytes((level, level, level, 0)) for level in range(256))
    start = 14 + 40 + len(grey)
    head = struct.pack("<2sIHHI", b"BM", start + len(pixels), 0, 0, start)
    head += struct.pack("<IiiHHIIiiII", 40, size, size, 1, 8, 0, len(pixels), 2835, 2835, 256, 0)
    with open("relief.bmp", "wb") as file:
        file.write(head + grey + pixels)


write("rose.dxf", rose())
write("rosette.plt", rosette())
write("board.gbr", board())
write("board.nc", drills())
relief()
