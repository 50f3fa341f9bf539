# Writes models to be solved as LP files, -v directory=DIRECTORY: the same ones everywhere.
function below(limit) {
    state = (state * 69069 + 12345) % 4294967296
    return int(state / 256) % limit
}
# A variable with its objective coefficient; a binary one.
function amount(name, cost) {
    objective = objective sprintf(" %+d %s\n", cost, name)
    return name
}
function choice(name, cost) {
    binary = binary " " name "\n"
    return amount(name, cost)
}
function row(left, relation, right) { rows = rows left " " relation " " right "\n" }
function write(name) {
    printf "Minimize\n%sSubject To\n%sBinaries\n%sEnd\n", objective, rows, binary >(directory "/" name ".lp")
    objective = rows = binary = ""
    state = 1
}

function knapsack(items, capacities, i, k, left) {
    for (i = 1; i <= items; i++)
        choice("x" i, -20 - below(80))
    for (k = 1; k <= capacities; k++) {
        left = ""
        for (i = 1; i <= items; i++)
            left = left sprintf(" + %d x%d\n", 10 + below(90), i)
        row(left, "<=", 15 * items)
    }
}
function cover(elements, sets, i, k, left) {
    for (k = 1; k <= sets; k++)
        choice("x" k, 10 + below(30))
    for (i = 1; i <= elements; i++) {
        left = ""
        one = 1 + below(sets) # at least
        for (k = 1; k <= sets; k++)
            if (k == one || below(20) == 0)
                left = left " + x" k "\n"
        row(left, ">=", 1)
    }
}
# Each item goes to one of the places, which are opened at a cost.
function place(places, items, opening, capacity, i, p, left, filled) {
    for (p = 1; p <= places; p++)
        filled[p] = " - " capacity " " choice("open" p, opening + below(opening)) "\n"
    for (i = 1; i <= items; i++) {
        left = ""
        size = 10 + below(40)
        for (p = 1; p <= places; p++) {
            left = left " + " choice("x" i "_" p, 5 + below(60)) "\n"
            row(" x" i "_" p " - open" p, "<=", 0)
            filled[p] = filled[p] " + " size " x" i "_" p "\n"
        }
        row(left, "=", 1)
    }
    for (p = 1; p <= places; p++)
        row(filled[p], "<=", 0)
}
function transport(from, to, i, j, left, sent) {
    for (j = 1; j <= to; j++) {
        left = ""
        for (i = 1; i <= from; i++) {
            left = left " + " amount("x" i "_" j, 5 + below(90)) "\n"
            sent[i] = sent[i] " + x" i "_" j "\n"
        }
        row(left, ">=", 10 + below(40))
    }
    for (i = 1; i <= from; i++)
        row(sent[i], "<=", 150)
}
BEGIN {
    state = 1
    knapsack(100, 5)
    write("knapsack")
    cover(120, 240)
    write("set-cover")
    place(14, 45, 150, 300)
    write("facility-location")
    place(8, 48, 20, 200)
    write("assignment")
    transport(100, 400)
    write("transport")
}
