package org.example.stock;

import java.util.HashMap;
import java.util.Map;

/** Counts what lies in the store. */
public final class Inventory {
    private final Map<String, Integer> counts = new HashMap<>();

    public void add(String item, int number) {
        if (number <= 0) {
            throw new IllegalArgumentException("number, " + number);
        }
        counts.merge(item, number, Integer::sum);
    }

    public boolean take(String item, int number) {
        Integer have = counts.get(item);
        if (have == null || have < number) {
            return false;
        }
        counts.put(item, have - number);
        return true;
    }

    @Override
    public String toString() {
        return "Inventory" + counts;
    }
}
