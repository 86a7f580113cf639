// Replaced by the map engine sources.
