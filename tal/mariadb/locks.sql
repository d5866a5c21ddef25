-- Who holds and who awaits what, in parts; the first column names the part. A row of "connection"
-- has the state, which says what the connection waits for. InnoDB lists a lock only if somebody
-- waits for it, in a row for each transaction that holds or awaits it. Metadata locks come last and
-- are limited, because a user can hold any number of locks with names of his own.
SELECT 'connection' AS part, id, state AS kind, user AS schema_name, host AS name, NULL AS mode,
       NULL AS granted, NULL AS space, NULL AS tables_locked, NULL AS rows_locked,
       NULL AS rows_modified
  FROM information_schema.processlist
UNION ALL
SELECT 'transaction', trx_mysql_thread_id, NULL, NULL, trx_id, NULL, NULL, NULL, trx_tables_locked,
       trx_rows_locked, trx_rows_modified
  FROM information_schema.innodb_trx
UNION ALL
SELECT 'innodb lock', x.trx_mysql_thread_id, l.lock_type, NULL, l.lock_table, l.lock_mode,
       x.trx_requested_lock_id IS NULL OR l.lock_id <> x.trx_requested_lock_id, l.lock_space, NULL,
       NULL, NULL
  FROM information_schema.innodb_locks l
  JOIN information_schema.innodb_trx x ON x.trx_id = l.lock_trx_id
UNION ALL
(SELECT 'metadata lock', t.processlist_id, m.object_type, m.object_schema, m.object_name,
        m.lock_type, m.lock_status = 'GRANTED', NULL, NULL, NULL, NULL
   FROM performance_schema.metadata_locks m
   JOIN performance_schema.threads t ON t.thread_id = m.owner_thread_id
  WHERE t.processlist_id IS NOT NULL
  ORDER BY m.lock_status = 'GRANTED' AND m.object_type = 'USER LEVEL LOCK'
  LIMIT 200000)
