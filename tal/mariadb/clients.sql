-- What is known about each connection, in parts; the first column names the part. zelk joins them,
-- which costs the server a quarter less than a join of its own.
-- A row of "connection", "word of the client" and "transaction" has the id of the connection in its
-- second column. A row of "socket", "record counter" and "file operations" has the id of the thread
-- there, and a row of "thread" says which connection that is.
-- The server's own threads and unfinished logins are left out. The name of a user alone does not
-- show them, because a client can have the same name.
SELECT 'connection' AS part, id, user AS name, host AS address, NULL AS detail, NULL AS command,
       NULL AS number
  FROM information_schema.processlist
 WHERE command <> 'Daemon' AND NOT (user = 'unauthenticated user' AND command = 'Connect')
UNION ALL
SELECT 'thread', thread_id, NULL, NULL, NULL, NULL, processlist_id
  FROM performance_schema.threads
 WHERE processlist_id IS NOT NULL
UNION ALL
SELECT 'socket', thread_id, NULL, ip, NULL, NULL, NULL
  FROM performance_schema.socket_instances
 WHERE event_name = 'wait/io/socket/sql/client_connection' AND thread_id IS NOT NULL
UNION ALL
SELECT 'record counter', thread_id, variable_name, NULL, NULL, NULL,
       CAST(variable_value AS UNSIGNED)
  FROM performance_schema.status_by_thread
 WHERE variable_name IN ('Handler_delete', 'Handler_update', 'Handler_write', 'Handler_read_first',
       'Handler_read_key', 'Handler_read_last', 'Handler_read_next', 'Handler_read_prev',
       'Handler_read_rnd', 'Handler_read_rnd_next')
   AND variable_value <> '0'
UNION ALL
SELECT 'file operations', thread_id, NULL, NULL, NULL, NULL, count_star
  FROM performance_schema.events_waits_summary_by_thread_by_event_name
 WHERE count_star > 0 AND event_name LIKE 'wait/io/file/%'
UNION ALL
SELECT 'word of the client', processlist_id, attr_name, NULL, NULL, NULL,
       CAST(attr_value AS UNSIGNED)
  FROM performance_schema.session_connect_attrs
 WHERE attr_name = '_pid'
UNION ALL
SELECT 'transaction', trx_mysql_thread_id, NULL, NULL, NULL, NULL, trx_rows_locked
  FROM information_schema.innodb_trx
