-- One row for each handle, ordered by file. {size} stands for what the size of a relation is.
SELECT u.database, u.relation, u.name,
       CASE WHEN u.is_relation THEN page.size ELSE 0::bigint END AS page_size,
       CASE WHEN r.oid IS NULL THEN 0::bigint
            -- Asking for the true size would wait for whoever locks the relation away.
            WHEN r.is_locked_away THEN r.relpages::bigint * page.size
            ELSE {size} END AS bytes,
       u.is_relation AND (pg_catalog.pg_is_in_recovery() OR coalesce(r.relkind = 'm', false))
         AS is_read_only,
       u.is_relation, u.has_rows, u.held, u.asked, u.awaits_record, u.awaits_file, u.may_lock_rows,
       u.pid, u.owner
FROM use u
     CROSS JOIN (SELECT pg_catalog.current_setting('block_size')::bigint AS size) page
     LEFT JOIN relation r ON r.database = u.database AND r.relation = u.relation
ORDER BY u.name, u.database, u.relation, u.pid
