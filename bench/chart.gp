# The chart of the benchmark: gnuplot -e "data='FILE'; output='FILE'" chart.gp
set terminal svg size 1100,520 font "sans,13" background "white"
set output output
set multiplot layout 1,2
set logscale xy
set format x "10^{%L}"
set xlabel "nonzeros in a call"
set ylabel "nanoseconds per nonzero"
set key above maxrows 3
all = "bridge floor limit checked ffm jna swig-arrays swig-elements"
number(variant) = int(sum [k=1:words(all)] (word(all, k) eq variant ? k : 0))
row(workload, variant) = \
    sprintf("< awk '$1 == \"%s\" && $3 == \"%s\"' %s", workload, variant, data)

set title "addvars without names"
plot for [variant in all] row("addvars", variant) using 2:($4/$2) with linespoints \
    linetype number(variant) linewidth (variant eq "bridge" ? 3 : 1) title variant
set title "addvars with names"
plot for [variant in "bridge floor checked ffm"] row("addvars+names", variant) \
    using 2:($4/$2) with linespoints linetype number(variant) \
    linewidth (variant eq "bridge" ? 3 : 1) title variant
unset multiplot
