-- Resource usage. What is counted here agrees with the lists. The workers are all processes but
-- those of the types below, which include types of later versions.
SELECT (SELECT pg_catalog.count(*) FROM process p WHERE p.backend_type = 'client backend')
         AS users,
       pg_catalog.current_setting('max_connections') AS users_maximum,
       (SELECT pg_catalog.count(*)
        FROM (SELECT DISTINCT u.database, u.relation, u.name FROM use u) f) AS files,
       (SELECT pg_catalog.count(*) FROM use) AS handles,
       (SELECT pg_catalog.count(*)
        FROM burden b JOIN process p ON p.pid = b.pid
        WHERE b.in_transaction AND p.datid IS NOT NULL) +
       (SELECT pg_catalog.count(*) FROM pg_catalog.pg_prepared_xacts) AS transactions,
       (SELECT pg_catalog.count(*) FROM process p
        WHERE p.datid IS NOT NULL AND p.leader_pid IS NULL
          AND p.pid <> pg_catalog.pg_backend_pid()) AS clients,
       (SELECT pg_catalog.count(*) FROM process p
        WHERE p.backend_type NOT IN (
                'client backend', 'walsender', 'autovacuum launcher', 'autovacuum worker',
                'checkpointer', 'background writer', 'walwriter', 'walreceiver', 'startup',
                'archiver', 'logger', 'slotsync worker', 'walsummarizer', 'io worker')) AS workers,
       pg_catalog.current_setting('max_worker_processes') AS workers_maximum,
       (SELECT pg_catalog.sum(b.granted) FROM burden b) AS locks,
       (SELECT pg_catalog.sum(pg_catalog.pg_database_size(d.oid))::bigint
        FROM pg_catalog.pg_database d) AS data_bytes,
       (SELECT pg_catalog.count(*) FROM process p
        WHERE p.backend_type IN ('client backend', 'walsender')) AS sessions,
       pg_catalog.floor(extract(epoch FROM pg_catalog.clock_timestamp() -
                                           pg_catalog.pg_postmaster_start_time())) AS up_seconds
