package com.korvex;

/** A native call ended with a failing status. */
public final class KVXException extends RuntimeException {
    private static final long serialVersionUID = 1;

    /** The status. */
    private final int status;

    /**
     * Makes an exception for a status.
     *
     * @param status the status, one of the {@code ERROR_} codes of {@link KVX}
     * @param text the solver's error text for it; may be null or empty
     */
    public KVXException(int status, String text) {
        super(message(status, text));
        this.status = status;
    }

    /**
     * Returns the status.
     *
     * @return one of the {@code ERROR_} codes of {@link KVX}
     */
    public int status() { return status; }

    /** The solver knows nothing of the statuses that the bridge itself answers with. */
    private static String message(int status, String text) {
        switch (status) {
        case KVX.ERROR_NULL_ARGUMENT:
            return "a required text is null (status " + status + ")";
        case KVX.ERROR_WRONG_INFO_TYPE:
            return "the callback datum is of another type (status " + status + ")";
        default:
            return text == null || text.isEmpty() ? "status " + status
                                                  : text + " (status " + status + ")";
        }
    }
}
