// Nothing but the headers that every test program includes; they are compiled once for all.
