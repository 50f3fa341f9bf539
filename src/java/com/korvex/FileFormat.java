package com.korvex;

import java.util.Objects;
import java.util.Optional;

/** What a file holds that {@link KVXModel#read} reads, by the ending of its name. */
public enum FileFormat {
    /** A model, as MPS. */
    MPS,
    /** A model in LP format. */
    LP,
    /** A solution. */
    SOLUTION,
    /** Start values. */
    START,
    /** A simplex basis. */
    BASIS,
    /** Parameters. */
    PARAMETERS;

    /**
     * Tells the format by a file's name; the file needn't exist.
     *
     * @param file name of the file
     * @return the format, or empty if it is neither a model's nor one of attributes
     */
    public static Optional<FileFormat> of(String file) {
        Objects.requireNonNull(file, "file");
        int model = KorvexJni.ismodelfile(file), attributes = KorvexJni.isattrfile(file);
        if (model > 0 && model <= 2)
            return Optional.of(values()[model - 1]);
        if (attributes > 0 && attributes <= 4)
            return Optional.of(values()[attributes + 1]);
        return Optional.empty();
    }

    /**
     * Tells whether such a file holds a whole model.
     *
     * @return true for {@link #MPS} and {@link #LP}
     */
    public boolean isModel() { return this == MPS || this == LP; }
}
