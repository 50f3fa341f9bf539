NAME the sample
OBJSENSE
    MAX
ROWS
 N cost
 L less
 G more
 E same
 G twosides
 N loose
COLUMNS
    x cost 0.1 less 1
    x twosides 3.3333333333333335
    M 'MARKER' 'INTORG'
    i cost -2 more 1e-17
    b same 123456789.12345679
    n less 1
    M 'MARKER' 'INTEND'
    s less 2
    unused cost 0
RHS
    RHS cost -7.5 less 10
    RHS more -0.1 same 4
    RHS twosides -0.3
RANGES
    RNG twosides 0.7
BOUNDS
 FR BND x
 UP BND i 1e9
 BV BND b
 SC BND n 9
 LO BND s 2
 SC BND s 1e100
 UP BND unused -1
ENDATA
