;; Hatch patterns, lengths in millimetres.
;; "*NAME, description", then a line per family of parallel lines: angle, base x,y, offset along,across [, dashes]:
;; positive dash, negative gap, 0 dot.

*SOLID, Solid fill
45, 0,0, 0,.125
*ANGLE, Angle steel
0, 0,0, 0,6.985, 5.08,-1.905
90, 0,0, 0,6.985, 5.08,-1.905
*ANSI31, Slanting lines
45, 0,0, 0,3.175
*ANSI32, Slanting double lines
45, 0,0, 0,9.525
45, 4.49012805,0, 0,9.525
*ANSI37, Slanting grid
45, 0,0, 0,3.175
135, 0,0, 0,3.175
*BRICK, Brickwork
0, 0,0, 0,6.35
90, 0,0, 0,12.7, 6.35,-6.35
90, 6.35,0, 0,12.7, -6.35,6.35
*CROSS, Crosses
0, 0,0, 6.35,6.35, 3.175,-9.525
90, 1.5875,-1.5875, 6.35,6.35, 3.175,-9.525
*DASH, Dashed lines
0, 0,0, 3.175,3.175, 3.175,-3.175
*DOTS, Dots, each row shifted half a step
0, 0,0, .79375,1.5875, 0,-1.5875
*LINE, Parallel lines
0, 0,0, 0,3.175
*NET, Square grid
0, 0,0, 0,3.175
90, 0,0, 0,3.175
*NET3, Triangular grid
0, 0,0, 0,3.175
60, 0,0, 0,3.175
120, 0,0, 0,3.175
*SQUARE, Squares
0, 0,0, 0,3.175, 3.175,-3.175
90, 0,0, 0,3.175, 3.175,-3.175
