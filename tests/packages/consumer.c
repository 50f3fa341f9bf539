#include <korvex.h>
#include <stdio.h>

int main(void) {
    int major, minor, technical;
    KVXversion(&major, &minor, &technical);
    return printf("%d.%d.%d\n", major, minor, technical) < 0;
}
