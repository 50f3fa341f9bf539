# Writes models to be solved as LP files, -v directory=DIRECTORY: the same ones everywhere.
function below(limit) {
    state = (state * 69069 + 12345) % 4294967296
    return int(state / 256) % limit
}
function begin(name) {
    state = 1
    file = directory "/" name ".lp"
    objective = rows = bounds = binary = ""
}
# A binary variable with its objective coefficient.
function choice(name, cost) {
    binary = binary " " name "\n"
    return amount(name, cost)
}
function amount(name, cost) {
    objective = objective sprintf(" %+d %s\n", cost, name)
    return name
}
function row(left, relation, right) { rows = rows " " left relation " " right "\n" }
function end() {
    printf "Minimize\n%sSubject To\n%sBinaries\n%sEnd\n", objective, rows, binary >file
    close(file)
}

function knapsack(items, capacities, i, k, left) {
    begin("knapsack")
    for (i = 1; i <= items; i++)
        choice("x" i, -20 - below(80))
    for (k = 1; k <= capacities; k++) {
        left = ""
        for (i = 1; i <= items; i++)
            left = left sprintf(" + %d x%d\n", 10 + below(90), i)
        row(left, "<=", 15 * items)
    }
    end()
}
function cover(elements, sets, i, k, left) {
    begin("set-cover")
    for (k = 1; k <= sets; k++)
        choice("x" k, 10 + below(30))
    for (i = 1; i <= elements; i++) {
        left = " x" 1 + below(sets) # so that there is one
        for (k = 1; k <= sets; k++)
            if (below(20) == 0 && left !~ "x" k "$")
                left = left "\n + x" k
        row(left, ">=", 1)
    }
    end()
}
# Each item goes to one of the places, which are opened at a cost.
function place(name, places, items, opening, capacity, i, p, left, filled) {
    begin(name)
    for (p = 1; p <= places; p++)
        choice("open" p, opening + below(opening))
    for (i = 1; i <= items; i++) {
        size[i] = 10 + below(40)
        left = ""
        for (p = 1; p <= places; p++) {
            left = left " + " choice("x" i "_" p, 5 + below(60)) "\n"
            row("x" i "_" p " - open" p, "<=", 0)
        }
        row(left, "=", 1)
    }
    for (p = 1; p <= places; p++) {
        filled = ""
        for (i = 1; i <= items; i++)
            filled = filled sprintf(" + %d x%d_%d\n", size[i], i, p)
        row(filled " - " capacity " open" p, "<=", 0)
    }
    end()
}
function lots(items, periods, i, t, it, together) {
    begin("lot-sizing")
    for (t = 1; t <= periods; t++) {
        together = ""
        for (i = 1; i <= items; i++) {
            it = i "_" t
            row(amount("lot" it, 1) " - " amount("left" it, 1 + below(3)) \
                (t > 1 ? " + left" i "_" t - 1 : ""), "=", 10 + below(40))
            row("lot" it " - 200 " choice("setup" it, 60 + below(60)), "<=", 0)
            together = together " + lot" it "\n"
        }
        row(together, "<=", 40 * items)
    }
    end()
}
function transport(from, to, i, j, left) {
    begin("transport")
    for (j = 1; j <= to; j++) {
        left = ""
        for (i = 1; i <= from; i++)
            left = left " + " amount("x" i "_" j, 5 + below(90)) "\n"
        row(left, ">=", 10 + below(40))
    }
    for (i = 1; i <= from; i++) {
        left = ""
        for (j = 1; j <= to; j++)
            left = left " + x" i "_" j "\n"
        row(left, "<=", 150)
    }
    end()
}
BEGIN {
    knapsack(100, 5)
    cover(120, 240)
    place("facility-location", 14, 45, 150, 300)
    place("assignment", 8, 48, 20, 200)
    lots(12, 16)
    transport(100, 400)
}
