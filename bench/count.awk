# Reads callgrind's output (--compress-strings=no --compress-pos=no). Prints for each dump its name,
# the instructions in all and those in the libraries whose names match -v own=PATTERN.
function tell() {
    if (name != "")
        print name, total, inside
    name = ""
    total = inside = 0
}
/^desc: Trigger: / { tell() }
/^desc: Trigger: Client Request: / { name = $5 " " $6 }
/^ob=/ { measured = $0 ~ own }
/^calls=/ { getline; next }
/^[0-9]/ { total += $2; if (measured) inside += $2 }
END { tell() }
