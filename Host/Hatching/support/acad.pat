;; Hatch patterns, lengths in inches.
;; "*NAME, description", then a line per family of parallel lines: angle, base x,y, offset along,across [, dashes]:
;; positive dash, negative gap, 0 dot.

*SOLID, Solid fill
45, 0,0, 0,.125
*ANGLE, Angle steel
0, 0,0, 0,.275, .2,-.075
90, 0,0, 0,.275, .2,-.075
*ANSI31, Slanting lines
45, 0,0, 0,.125
*ANSI32, Slanting double lines
45, 0,0, 0,.375
45, .176776695,0, 0,.375
*ANSI37, Slanting grid
45, 0,0, 0,.125
135, 0,0, 0,.125
*BRICK, Brickwork
0, 0,0, 0,.25
90, 0,0, 0,.5, .25,-.25
90, .25,0, 0,.5, -.25,.25
*CROSS, Crosses
0, 0,0, .25,.25, .125,-.375
90, .0625,-.0625, .25,.25, .125,-.375
*DASH, Dashed lines
0, 0,0, .125,.125, .125,-.125
*DOTS, Dots, each row shifted half a step
0, 0,0, .03125,.0625, 0,-.0625
*LINE, Parallel lines
0, 0,0, 0,.125
*NET, Square grid
0, 0,0, 0,.125
90, 0,0, 0,.125
*NET3, Triangular grid
0, 0,0, 0,.125
60, 0,0, 0,.125
120, 0,0, 0,.125
*SQUARE, Squares
0, 0,0, 0,.125, .125,-.125
90, 0,0, 0,.125, .125,-.125
