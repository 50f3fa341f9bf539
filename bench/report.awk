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
# The median of a variant's ratios to the base; also fills ratios and times.
function compare(work, variant, base, run, size) {
    for (run in runs)
        if ((run, work, variant) in ns && (run, work, base) in ns) {
            times[++size] = ns[run, work, variant]
            ratios[size] = times[size] / ns[run, work, base]
        }
    count = size + 0
    return sort(ratios, count)
}
{
    work = $2 " " $3
    ns[$1, work, $4] = $5
    if (!(work in seen)) works[seen[work] = ++workCount] = work
    runs[$1]
}
END {
    names = "floor control bridge checked checks limit jna swig-arrays swig-elements ffm glpk-java"
    variantCount = split(names, variants, " ")
    rule = heads = "|"
    for (v = 1; v <= variantCount; v++) {
        heads = heads " " variants[v] " |"
        rule = rule "---:|"
    }
    print "| Workload | Items | ns " heads
    print "|---|---:|---:" rule
    for (w = 1; w <= workCount; w++) {
        # Building from end to end has no floor: it is measured by the bridge.
        split(works[w], word, " ")
        base = word[1] == "build" ? "bridge" : "floor"
        line = own = ""
        for (v = 1; v <= variantCount; v++) {
            ratio = compare(works[w], variants[v], base)
            cell = count > 0 ? sprintf("%.2f (%.2f-%.2f)", ratio, ratios[1], ratios[count]) : ""
            if (count > 0) {
                time = sort(times, count)
                print works[w], variants[v], time > chart
            }
            if (variants[v] == base) {
                own = time
                cell = "1"
            }
            line = line " " cell " |"
        }
        printf "| %s | %d | %.0f |%s\n", word[1], word[2], own, line
    }
    share = compare("addvars 1000000", "checks", "checked")
    if (count > 0)
        printf "\nChecks, of a checked call of 10^6 nonzeros: %.1f %% (%.1f-%.1f)\n", 100 * share,
            100 * ratios[1], 100 * ratios[count]
}
