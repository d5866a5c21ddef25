-- zelk: resource usage. The process types that are no workers include those of later versions.
WITH me AS MATERIALIZED (
  SELECT d.oid AS dboid FROM pg_database d WHERE d.datname = current_database()
), act AS MATERIALIZED (
  SELECT pid, coalesce(leader_pid, pid) AS lead, backend_type, datid FROM pg_stat_activity
), lk AS MATERIALIZED (
  SELECT l.locktype, l.database, l.relation, l.granted, l.mode, coalesce(a.lead::text, l.pid::text, l.virtualtransaction) AS who, l.pid
  FROM pg_locks l LEFT JOIN act a ON a.pid = l.pid
  WHERE l.pid IS DISTINCT FROM pg_backend_pid() AND l.mode <> 'SIReadLock'
), h AS MATERIALIZED (
  SELECT DISTINCT l.database, l.relation, l.who
  FROM lk l CROSS JOIN me LEFT JOIN pg_class c ON c.oid = l.relation AND l.database IN (me.dboid, 0)
  WHERE l.relation IS NOT NULL AND (c.oid IS NULL OR c.relkind IN ('r','i','m','S','t'))
)
SELECT (SELECT count(*) FROM act WHERE backend_type = 'client backend')                       AS users,
       current_setting('max_connections')::int                                                AS users_max,
       (SELECT count(*) FROM (SELECT DISTINCT database, relation FROM h) x)                   AS files,
       (SELECT count(*) FROM h)                                                               AS handles,
       (SELECT count(*) FROM lk JOIN act a ON a.pid = lk.pid WHERE lk.locktype = 'virtualxid' AND lk.granted AND lk.mode = 'ExclusiveLock'
          AND a.datid IS NOT NULL AND a.pid = a.lead) + (SELECT count(*) FROM pg_prepared_xacts) AS transactions,
       (SELECT count(*) FROM act WHERE datid IS NOT NULL AND pid = lead AND pid <> pg_backend_pid()) AS clients,
       (SELECT count(*) FROM act WHERE backend_type NOT IN ('client backend','walsender','autovacuum launcher','autovacuum worker',
          'checkpointer','background writer','walwriter','walreceiver','startup','archiver','logger',
          'slotsync worker','walsummarizer','io worker'))                                      AS workers,
       current_setting('max_worker_processes')::int                                           AS workers_max,
       (SELECT count(*) FROM lk WHERE granted)                                                AS locks,
       (SELECT (sum(CASE WHEN pg_has_role('pg_read_all_stats', 'USAGE') OR has_database_privilege(oid, 'CONNECT')
                          THEN pg_database_size(oid) END) / 1048576)::bigint FROM pg_database)               AS data_mb,
       (SELECT count(*) FROM act WHERE backend_type IN ('client backend','walsender'))        AS sessions,
       floor(extract(epoch FROM clock_timestamp() - pg_postmaster_start_time()))::bigint      AS uptime_s
