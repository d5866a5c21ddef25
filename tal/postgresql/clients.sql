-- One row for each handle; a client without handles has one row with file_name NULL.
SELECT p.pid, p.client_addr IS NOT NULL AS is_remote,
       CASE p.client_port WHEN -1 THEN '[local]'
            ELSE coalesce(pg_catalog.host(p.client_addr), '') END AS address,
       coalesce(b.granted, 0::bigint) AS locks_used,
       coalesce(e.excludes_writers, false) AS excludes_writers,
       coalesce(b.in_transaction, false) OR coalesce(p.state LIKE 'idle in transaction%', false)
         AS in_transaction,
       p.name || ' #'::text || p.pid::text AS session_name,
       u.name AS file_name, u.is_relation, u.has_rows, u.held, u.asked, u.awaits_record,
       u.awaits_file, u.may_lock_rows
FROM process p
     LEFT JOIN burden b ON b.pid = p.pid
     LEFT JOIN (SELECT x.pid, pg_catalog.bool_or(x.is_relation AND x.held >= 6) AS excludes_writers
                FROM use x GROUP BY x.pid) e ON e.pid = p.pid
     LEFT JOIN use u ON u.pid = p.pid
WHERE p.datid IS NOT NULL AND p.leader_pid IS NULL AND p.pid <> pg_catalog.pg_backend_pid()
ORDER BY p.backend_start, p.pid, u.name
