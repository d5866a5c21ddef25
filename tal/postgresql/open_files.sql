-- zelk: open files with their handles, one row for each handle, ordered by file.
WITH me AS MATERIALIZED (
  SELECT d.oid AS dboid, current_setting('block_size')::bigint AS page, pg_is_in_recovery() AS standby
  FROM pg_database d WHERE d.datname = current_database()
), act AS MATERIALIZED (
  SELECT pid, coalesce(leader_pid, pid) AS lead, backend_type, usename, datname
  FROM pg_stat_activity
), lk AS MATERIALIZED (
  SELECT l.locktype, l.database, l.relation, l.granted, l.transactionid, a.lead,
         coalesce(a.lead::text, l.pid::text, l.virtualtransaction) AS who, coalesce(a.lead, l.pid) AS pid,
         array_position('{AccessShareLock,RowShareLock,RowExclusiveLock,ShareUpdateExclusiveLock,ShareLock,ShareRowExclusiveLock,ExclusiveLock,AccessExclusiveLock}'::text[], l.mode) AS rank
  FROM pg_locks l LEFT JOIN act a ON a.pid = l.pid
  WHERE l.pid IS DISTINCT FROM pg_backend_pid() AND l.mode <> 'SIReadLock'
), owner AS MATERIALIZED (
  SELECT lk.who,
         bool_or(locktype = 'transactionid' AND granted AND rank = 7) AS has_xid,
         bool_or(locktype = 'transactionid' AND NOT granted)          AS waits_xid,
         coalesce(min(a.usename || '@' || a.datname), min(a.backend_type), 'prepared ' || min(p.gid)) AS name
  FROM lk LEFT JOIN act a ON a.pid = lk.lead
          LEFT JOIN pg_prepared_xacts p ON lk.pid IS NULL AND p.transaction = lk.transactionid
  GROUP BY lk.who
), h AS MATERIALIZED (
  SELECT l.database, l.relation, l.who, max(l.pid) AS pid, max(o.name) AS name,
         max(l.rank) FILTER (WHERE l.locktype = 'relation' AND l.granted)                    AS held,
         max(l.rank) FILTER (WHERE l.locktype = 'relation')                                  AS asked,
         bool_or(l.locktype = 'tuple' AND (NOT l.granted OR o.waits_xid))                    AS wait_row,
         bool_or(l.locktype IN ('relation','extend','page') AND NOT l.granted)               AS wait_file,
         bool_or(l.locktype = 'tuple' OR (o.has_xid AND l.granted AND l.locktype = 'relation' AND l.rank IN (2,3))) AS row_locks
  FROM lk l JOIN owner o USING (who)
  WHERE l.relation IS NOT NULL
  GROUP BY l.database, l.relation, l.who
), f AS MATERIALIZED (
  SELECT r.database, r.relation, c.relkind,
         coalesce(d.datname, 'global') || '.' || coalesce(n.nspname || '.' || c.relname, r.relation::text) AS name,
         CASE WHEN c.oid IS NULL THEN 0                       -- other database, or created by an open transaction
              WHEN r.ae THEN c.relpages * me.page             -- never touch a relation somebody locks away
              ELSE pg_relation_size(c.oid) END AS bytes,
         me.page, (me.standby OR c.relkind = 'm') AS ro, r.row_locks, r.table_lock
  FROM (SELECT database, relation, bool_or(asked = 8) AS ae, bool_or(held >= 5) AS table_lock, bool_or(row_locks) AS row_locks
        FROM h GROUP BY database, relation) r
       CROSS JOIN me
       LEFT JOIN pg_database d  ON d.oid = r.database
       LEFT JOIN pg_class c     ON c.oid = r.relation AND r.database IN (me.dboid, 0)
       LEFT JOIN pg_namespace n ON n.oid = c.relnamespace
  WHERE c.oid IS NULL OR c.relkind IN ('r','i','m','S','t')
)
SELECT f.database, f.relation, f.name, f.page AS page_size,
       CASE WHEN f.ro THEN 89 ELSE 78 END                                       AS read_only,
       CASE WHEN f.relkind IS NULL AND f.row_locks THEN 0
            WHEN f.row_locks AND f.relkind = 'r' THEN 89 ELSE 78 END            AS record_locks,
       CASE WHEN f.table_lock THEN 89 ELSE 78 END                               AS trans_lock,
       (f.bytes + 1023) / 1024                                                  AS size_kb,
       coalesce(h.pid, 0)                                                       AS client_index,
       CASE WHEN h.asked >= 6 THEN 252 WHEN h.asked = 5 THEN 238
            WHEN h.asked = 1 THEN 254 ELSE 0 END                                AS open_mode,
       CASE WHEN NOT h.row_locks THEN 78 WHEN f.relkind IS NULL THEN 0
            WHEN f.relkind = 'r' THEN 77 ELSE 78 END                            AS lock_type,
       CASE WHEN h.wait_row THEN 1 WHEN h.wait_file THEN 2 ELSE 0 END           AS wait_state,
       CASE WHEN h.held >= 6 THEN 19 WHEN h.held >= 1 THEN 1019 ELSE 0 END      AS trans_state,
       h.name                                                                   AS client_name
FROM f JOIN h USING (database, relation)
ORDER BY f.name, f.database, f.relation, h.pid
