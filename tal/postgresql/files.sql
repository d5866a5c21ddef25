-- One row for each handle, ordered by file.
SELECT u.database, u.relation, u.name,
       CASE WHEN u.is_relation THEN here.page ELSE 0::bigint END AS page_size, u.bytes,
       u.is_relation AND (u.is_copy OR pg_catalog.pg_is_in_recovery()) AS is_read_only,
       u.is_relation, u.has_rows, u.held, u.asked, u.awaits_record, u.awaits_file, u.may_lock_rows,
       u.pid, u.owner
FROM use u CROSS JOIN here
ORDER BY u.name, u.database, u.relation, u.pid
