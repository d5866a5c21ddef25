-- zelk: whether this role may see what is reported.
SELECT pg_has_role('pg_read_all_stats', 'USAGE')
