# Reads "machine workload items variant nanoseconds" lines and prints the table: for each workload
# the median over the virtual machines of the floor's time, and of each variant's ratio to the floor
# in the same machine, with the least and the greatest. -v chart=FILE receives the medians.
function sort(list, size, i, j, held) {
    for (i = 2; i <= size; i++) {
        held = list[i]
        for (j = i - 1; j > 0 && list[j] > held; j--)
            list[j + 1] = list[j]
        list[j + 1] = held
    }
    return list[int((size + 1) / 2)]
}
{
    work = $2 " " $3
    ns[$1, work, $4] = $5
    if (!(work in seen)) works[seen[work] = ++workCount] = work
    runs[$1]
}
END {
    names = "floor control bridge checked limit jna swig-arrays swig-elements ffm glpk-java"
    count = split(names, variants, " ")
    heads = names
    gsub(" ", " | ", heads)
    print "| Workload | Items | ns | " heads " |"
    print "|---|---:|---:|" substr("---:|---:|---:|---:|---:|---:|---:|---:|---:|---:|", 1, 5 * count)
    for (w = 1; w <= workCount; w++) {
        line = ""
        for (v = 1; v <= count; v++) {
            size = 0
            for (run in runs)
                if ((run, works[w], variants[v]) in ns) {
                    times[++size] = ns[run, works[w], variants[v]]
                    # Building from end to end has no floor: it is measured by the bridge.
                    base = (run, works[w], "floor") in ns ? "floor" : "bridge"
                    ratios[size] = times[size] / ns[run, works[w], base]
                }
            cell = ""
            if (size > 0) {
                time = sort(times, size)
                cell = sprintf("%.2f (%.2f-%.2f)", sort(ratios, size), ratios[1], ratios[size])
                print works[w], variants[v], time > chart
                if (variants[v] == base) {
                    own = time
                    cell = "1"
                }
            }
            line = line " " cell " |"
        }
        split(works[w], word, " ")
        printf "| %s | %d | %.0f |%s\n", word[1], word[2], own, line
    }
}
