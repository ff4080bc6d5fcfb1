// Exists to carry the precompiled header of the tests.
