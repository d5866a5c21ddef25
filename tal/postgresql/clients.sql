-- zelk: record-level clients with their handles, one row for each handle; a client without handles
-- has one row with file_name NULL.
WITH me AS MATERIALIZED (
  SELECT d.oid AS dboid FROM pg_database d WHERE d.datname = current_database()
), act AS MATERIALIZED (
  SELECT *, coalesce(leader_pid, pid) AS lead FROM pg_stat_activity WHERE pid <> pg_backend_pid()
), lk AS MATERIALIZED (
  SELECT l.locktype, l.database, l.relation, l.granted, coalesce(a.lead, l.pid) AS pid,
         array_position('{AccessShareLock,RowShareLock,RowExclusiveLock,ShareUpdateExclusiveLock,ShareLock,ShareRowExclusiveLock,ExclusiveLock,AccessExclusiveLock}'::text[], l.mode) AS rank
  FROM pg_locks l LEFT JOIN act a ON a.pid = l.pid
  WHERE l.pid <> pg_backend_pid() AND l.mode <> 'SIReadLock'
), owner AS MATERIALIZED (
  SELECT pid, count(*) FILTER (WHERE granted)                         AS locks,
         bool_or(locktype = 'virtualxid' AND granted)                 AS in_xact,
         bool_or(locktype = 'relation' AND granted AND rank >= 6)     AS excl,
         bool_or(locktype = 'transactionid' AND granted AND rank = 7) AS has_xid,
         bool_or(locktype = 'transactionid' AND NOT granted)          AS waits_xid
  FROM lk GROUP BY pid
), h AS MATERIALIZED (
  SELECT l.pid, coalesce(d.datname, 'global') || '.' || coalesce(n.nspname || '.' || c.relname, l.relation::text) AS name,
         c.relkind, l.held, l.asked, l.wait_row, l.wait_file, l.row_locks
  FROM (SELECT l.database, l.relation, l.pid,
               max(l.rank) FILTER (WHERE l.locktype = 'relation' AND l.granted)      AS held,
               max(l.rank) FILTER (WHERE l.locktype = 'relation')                    AS asked,
               bool_or(l.locktype = 'tuple' AND (NOT l.granted OR o.waits_xid))      AS wait_row,
               bool_or(l.locktype IN ('relation','extend','page') AND NOT l.granted) AS wait_file,
               bool_or(l.locktype = 'tuple' OR (o.has_xid AND l.granted AND l.locktype = 'relation' AND l.rank IN (2,3))) AS row_locks
        FROM lk l JOIN owner o USING (pid) WHERE l.relation IS NOT NULL
        GROUP BY l.database, l.relation, l.pid) l
       CROSS JOIN me
       LEFT JOIN pg_database d  ON d.oid = l.database
       LEFT JOIN pg_class c     ON c.oid = l.relation AND l.database IN (me.dboid, 0)
       LEFT JOIN pg_namespace n ON n.oid = c.relnamespace
  WHERE c.oid IS NULL OR c.relkind IN ('r','i','m','S','t')
)
SELECT a.pid,
       CASE WHEN a.client_port = -1 OR a.backend_type NOT IN ('client backend','walsender') THEN 1
            WHEN a.client_addr IS NOT NULL THEN 0 ELSE 2 END                    AS site,
       CASE WHEN a.client_port = -1 THEN '[local]' ELSE coalesce(host(a.client_addr), '') END      AS net_address,
       coalesce(o.locks, 0)                                                     AS locks_used,
       CASE WHEN o.excl THEN 19
            WHEN o.in_xact OR a.state LIKE 'idle in transaction%' THEN 1019 ELSE 0 END AS trans_state,
       coalesce(a.usename || '@' || a.datname, a.backend_type)                  AS session_name,
       h.name                                                                   AS file_name,
       CASE WHEN h.asked >= 6 THEN 252 WHEN h.asked = 5 THEN 238
            WHEN h.asked = 1 THEN 254 ELSE 0 END                                AS open_mode,
       CASE WHEN NOT h.row_locks THEN 78 WHEN h.relkind IS NULL THEN 0
            WHEN h.relkind = 'r' THEN 77 ELSE 78 END                            AS lock_type,
       CASE WHEN h.wait_row THEN 1 WHEN h.wait_file THEN 2 ELSE 0 END           AS wait_state,
       CASE WHEN h.held >= 6 THEN 19 WHEN h.held >= 1 THEN 1019 ELSE 0 END      AS h_trans_state
FROM act a LEFT JOIN owner o ON o.pid = a.pid LEFT JOIN h ON h.pid = a.pid
WHERE a.datid IS NOT NULL AND a.leader_pid IS NULL
ORDER BY a.backend_start, a.pid, h.name
