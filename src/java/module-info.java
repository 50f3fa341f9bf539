/** The Java interface of the solver Korvex. */
module com.korvex { exports com.korvex; }
