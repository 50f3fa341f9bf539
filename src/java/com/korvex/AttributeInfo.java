package com.korvex;

/**
 * What an attribute is like.
 *
 * @param type {@link KVX#TYPE_INT}, {@link KVX#TYPE_DOUBLE}, {@link KVX#TYPE_CHAR} or {@link
 *     KVX#TYPE_STRING}
 * @param element what it belongs to: {@link KVX#OF_MODEL}, {@link KVX#OF_VARIABLE} and so on
 * @param settable whether it can be set
 */
public record AttributeInfo(int type, int element, boolean settable) {}
