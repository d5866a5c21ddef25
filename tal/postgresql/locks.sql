-- zelk: who holds and who awaits what. The lists of files and of clients and the usage begin with
-- this. Every function has its schema before it and every operator gets the exact types, so that
-- nothing that a user made can take their place. {size} stands for the expression that gives the
-- size of a relation in bytes.
WITH here AS MATERIALIZED (
  SELECT d.oid AS database, pg_catalog.current_setting('block_size')::bigint AS page
  FROM pg_catalog.pg_database d
  WHERE d.datname = pg_catalog.current_database()
), process AS MATERIALIZED (
  SELECT a.*, coalesce(a.leader_pid, a.pid) AS leader,
         coalesce(a.usename::text || '@'::text || a.datname::text, a.backend_type) AS name
  FROM pg_catalog.pg_stat_activity a
), every_lock AS MATERIALIZED (
  -- The locks of a parallel worker count as those of its leader. A prepared transaction has no
  -- process.
  SELECT l.locktype, l.database, l.relation, l.transactionid, l.virtualxid, l.classid, l.objid,
         l.objsubid, l.mode, l.granted, coalesce(p.leader, l.pid, 0) AS pid,
         CASE WHEN l.pid IS NULL THEN l.virtualtransaction ELSE '' END AS prepared
  FROM pg_catalog.pg_locks l LEFT JOIN process p ON p.pid = l.pid
  WHERE l.pid IS DISTINCT FROM pg_catalog.pg_backend_pid()
), burden AS MATERIALIZED (
  -- If there are more than 50 000 locks, each owner gets an equal share of them: those on every
  -- step-th object.
  SELECT b.pid, b.prepared, b.granted, b.in_transaction, (b.locks - 1) / b.share + 1 AS step
  FROM (SELECT k.pid, k.prepared, pg_catalog.count(*) AS locks,
               pg_catalog.count(*) FILTER (WHERE k.granted) AS granted,
               pg_catalog.bool_or(k.locktype = 'virtualxid' AND k.mode = 'ExclusiveLock')
                 AS in_transaction,
               CASE WHEN pg_catalog.sum(pg_catalog.count(*)) OVER () <= 50000::numeric
                    THEN pg_catalog.count(*)
                    ELSE greatest(50000::bigint / pg_catalog.count(*) OVER (), 1::bigint)
                    END AS share
        FROM every_lock k GROUP BY k.pid, k.prepared) b
), lock AS MATERIALIZED (
  SELECT k.*, CASE k.mode WHEN 'AccessShareLock'          THEN 1
                          WHEN 'RowShareLock'             THEN 2
                          WHEN 'RowExclusiveLock'         THEN 3
                          WHEN 'ShareUpdateExclusiveLock' THEN 4
                          WHEN 'ShareLock'                THEN 5
                          WHEN 'ShareRowExclusiveLock'    THEN 6
                          WHEN 'ExclusiveLock'            THEN 7
                          WHEN 'AccessExclusiveLock'      THEN 8 END AS rank
  FROM every_lock k JOIN burden b ON b.pid = k.pid AND b.prepared = k.prepared
  WHERE k.mode <> 'SIReadLock'
    AND (b.step = 1::bigint OR NOT k.granted
         OR coalesce(k.relation, k.objid, 0::oid)::bigint % b.step = 0::bigint
         OR coalesce(k.relation, k.objid, 0::oid) IN
            (SELECT coalesce(w.relation, w.objid, 0::oid) FROM every_lock w WHERE NOT w.granted))
), owner AS MATERIALIZED (
  SELECT k.pid, k.prepared, k.changes, k.awaits_change,
         coalesce(p.name, 'prepared '::text || x.gid, '') AS name
  FROM (SELECT l.pid, l.prepared,
               pg_catalog.bool_or(l.locktype = 'transactionid' AND l.granted AND l.rank = 7)
                 AS changes,
               pg_catalog.bool_or(l.locktype = 'transactionid' AND NOT l.granted) AS awaits_change,
               pg_catalog.min(l.transactionid::text) FILTER (WHERE l.granted) AS transaction
        FROM lock l GROUP BY l.pid, l.prepared) k
       LEFT JOIN process p ON p.pid = k.pid
       LEFT JOIN pg_catalog.pg_prepared_xacts x
              ON k.prepared <> '' AND x.transaction::text = k.transaction
), relation_use AS MATERIALIZED (
  SELECT k.pid, k.prepared, k.database, k.relation,
         pg_catalog.max(k.rank) FILTER (WHERE k.locktype = 'relation' AND k.granted) AS held,
         pg_catalog.max(k.rank) FILTER (WHERE k.locktype = 'relation') AS asked,
         pg_catalog.bool_or(k.locktype = 'tuple') AS picks_row,
         pg_catalog.bool_or(k.locktype = 'tuple' AND NOT k.granted) AS awaits_row,
         pg_catalog.bool_or(k.locktype <> 'tuple' AND NOT k.granted) AS awaits_relation,
         pg_catalog.bool_or(k.locktype = 'relation' AND k.granted AND k.rank IN (2, 3))
           AS may_change
  FROM lock k
  WHERE k.relation IS NOT NULL
  GROUP BY k.pid, k.prepared, k.database, k.relation
), relation AS MATERIALIZED (
  -- Names, kinds and sizes are known only in this database and for the catalogs that all databases
  -- share.
  SELECT r.database, r.relation, c.relkind,
         CASE WHEN c.oid IS NULL THEN 0::bigint
              -- To read the true size, the server would wait until this lock is released.
              WHEN r.is_locked_away THEN c.relpages::bigint * here.page
              ELSE {size} END AS bytes,
         coalesce(d.datname::text, 'global') || '.'::text ||
         coalesce(n.nspname::text || '.'::text || c.relname::text, r.relation::text) AS name
  FROM (SELECT u.database, u.relation, pg_catalog.bool_or(u.asked = 8) AS is_locked_away
        FROM relation_use u GROUP BY u.database, u.relation) r
       CROSS JOIN here
       LEFT JOIN pg_catalog.pg_database d ON d.oid = r.database
       LEFT JOIN pg_catalog.pg_class c
              ON c.oid = r.relation AND r.database IN (here.database, 0::oid)
       LEFT JOIN pg_catalog.pg_namespace n ON n.oid = c.relnamespace
  WHERE c.oid IS NULL OR c.relkind IN ('r', 'i', 'm', 'S', 't')
), other_use AS MATERIALIZED (
  -- Locks on other things than relations. Advisory locks are always shown, the others only while
  -- somebody waits for them.
  SELECT u.*
  FROM (SELECT k.pid, k.prepared, k.locktype, k.database, k.transactionid, k.virtualxid, k.classid,
               k.objid, k.objsubid,
               pg_catalog.max(k.rank) FILTER (WHERE k.granted) AS held,
               pg_catalog.max(k.rank) AS asked,
               pg_catalog.bool_or(NOT k.granted) AS awaits,
               pg_catalog.bool_or(pg_catalog.bool_or(NOT k.granted)) OVER (
                 PARTITION BY k.locktype, k.database, k.transactionid::text, k.virtualxid,
                              k.classid, k.objid, k.objsubid) AS is_awaited
        FROM lock k
        WHERE k.relation IS NULL
        GROUP BY k.pid, k.prepared, k.locktype, k.database, k.transactionid, k.virtualxid,
                 k.classid, k.objid, k.objsubid) u
  WHERE u.is_awaited OR u.locktype IN ('advisory', 'userlock')
), named_use AS MATERIALIZED (
  SELECT u.pid, u.prepared, u.database, u.held, u.asked, u.awaits,
         u.locktype IN ('advisory', 'userlock', 'transactionid') AS is_record,
         CASE u.locktype
           WHEN 'transactionid' THEN 'transaction '::text || u.transactionid::text
           WHEN 'virtualxid' THEN 'virtual transaction '::text || u.virtualxid
           WHEN 'object' THEN
             coalesce(catalog.relname::text || ' '::text ||
                      coalesce(object_schema.nspname::text, object_type.typname::text,
                               object_role.rolname::text, object_database.datname::text,
                               u.objid::text),
                      'object '::text || u.classid::text || '.'::text || u.objid::text)
           WHEN 'advisory' THEN
             'advisory '::text ||
             CASE u.objsubid
               WHEN 1 THEN ((u.classid::bigint << 32) | u.objid::bigint)::text
               ELSE ((u.classid::bigint # 2147483648) - 2147483648)::text || ', '::text ||
                    ((u.objid::bigint # 2147483648) - 2147483648)::text END
           ELSE u.locktype ||
                coalesce(' '::text || coalesce(u.transactionid::text, u.objid::text), '')
           END ||
         CASE WHEN u.database <> here.database
              THEN coalesce(' ('::text || elsewhere.datname::text || ')'::text, '')
              ELSE '' END AS name
  FROM other_use u CROSS JOIN here
       LEFT JOIN pg_catalog.pg_database elsewhere ON elsewhere.oid = u.database
       LEFT JOIN pg_catalog.pg_class catalog ON catalog.oid = u.classid AND u.locktype = 'object'
       LEFT JOIN pg_catalog.pg_namespace object_schema
              ON object_schema.oid = u.objid AND u.database = here.database
                 AND catalog.relname = 'pg_namespace'
       LEFT JOIN pg_catalog.pg_type object_type
              ON object_type.oid = u.objid AND u.database = here.database
                 AND catalog.relname = 'pg_type'
       LEFT JOIN pg_catalog.pg_roles object_role
              ON object_role.oid = u.objid AND catalog.relname = 'pg_authid'
       LEFT JOIN pg_catalog.pg_database object_database
              ON object_database.oid = u.objid AND catalog.relname = 'pg_database'
), use AS MATERIALIZED (
  -- These are full joins because the server expects too few rows: it would join all others by
  -- comparing each row with each.
  SELECT u.pid, o.name AS owner, u.database, u.relation, r.name, true AS is_relation,
         coalesce(r.relkind = 'r', true) AS has_rows, u.held, u.asked,
         u.awaits_row OR (u.picks_row AND o.awaits_change) AS awaits_record,
         u.awaits_relation AS awaits_file,
         u.picks_row OR (u.may_change AND o.changes) AS may_lock_rows,
         coalesce(r.relkind = 'm', false) AS is_copy, r.bytes
  FROM relation_use u
       FULL JOIN relation r ON r.database = u.database AND r.relation = u.relation
       FULL JOIN owner o ON o.pid = u.pid AND o.prepared = u.prepared
  WHERE coalesce(r.name, '') <> ''
  UNION ALL
  SELECT u.pid, o.name, coalesce(u.database, 0::oid), 0::oid, u.name, false, false, u.held, u.asked,
         u.awaits AND u.is_record, u.awaits AND NOT u.is_record, false, false, 0::bigint
  FROM named_use u JOIN owner o ON o.pid = u.pid AND o.prepared = u.prepared
  UNION ALL
  SELECT b.pid, coalesce(o.name, ''), 0::oid, 0::oid,
         '('::text || (b.granted - b.granted / b.step)::text || ' more locks)'::text,
         false, false, 1, 1, false, false, false, false, 0::bigint
  FROM burden b LEFT JOIN owner o ON o.pid = b.pid AND o.prepared = b.prepared
  WHERE b.step > 1::bigint
)
