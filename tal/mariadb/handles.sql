-- 'M': a metadata lock, with its connection's transaction and what that waits for.
-- 'C': the space of a contended lock, all that is known without metadata locks.
SELECT 'M' AS part, t.processlist_id AS id, t.processlist_user AS user, t.processlist_host AS host,
       t.processlist_state AS state, m.object_schema AS table_schema, m.object_name AS table_name,
       m.lock_type, m.lock_status = 'GRANTED' AS granted,
       x.trx_tables_locked, x.trx_rows_locked, x.trx_rows_modified,
       l.lock_type AS wait_type, l.lock_space AS wait_space
  FROM performance_schema.metadata_locks m
  JOIN performance_schema.threads t ON t.thread_id = m.owner_thread_id
  LEFT JOIN information_schema.innodb_trx x ON x.trx_mysql_thread_id = t.processlist_id
  LEFT JOIN information_schema.innodb_locks l ON l.lock_id = x.trx_requested_lock_id
 WHERE m.object_type = 'TABLE'
UNION ALL
SELECT 'C', NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, lock_space
  FROM information_schema.innodb_locks
 WHERE lock_type = 'RECORD'
