M48
;FORMAT={2:4/ absolute / inch / suppress trailing zeros}
INCH,LZ
T1C0.0400
%
T1
X0100Y02
X-0050Y005
X1.25Y.5
M30
