-- What is known about each connection, in parts, as in clients.sql. The number of a connection is
-- the milliseconds of its present command. A thread has two kinds of "time", in microseconds: the
-- times that it was idle, and the statements that have ended. Statements inside routines do not
-- count, because the statement that called the routine does.
-- The server's own threads and unfinished logins are left out. A thread of the server has no host,
-- a client always has one.
SELECT 'connection' AS part, id, user AS name, host AS address, db AS detail, command,
       CAST(time_ms AS SIGNED) AS number
  FROM information_schema.processlist
 WHERE command <> 'Daemon' AND NOT (user = 'unauthenticated user' AND command = 'Connect')
   AND NOT (user = 'system user' AND COALESCE(host, '') = '')
UNION ALL
SELECT 'thread', thread_id, NULL, NULL, NULL, NULL, processlist_id
  FROM performance_schema.threads
 WHERE processlist_id IS NOT NULL AND instrumented = 'YES'
UNION ALL
SELECT 'socket', thread_id, NULL, ip, NULL, NULL, NULL
  FROM performance_schema.socket_instances
 WHERE event_name = 'wait/io/socket/sql/client_connection' AND thread_id IS NOT NULL
UNION ALL
SELECT 'time', thread_id, NULL, NULL, NULL, NULL, sum_timer_wait DIV 1000000
  FROM performance_schema.events_waits_summary_by_thread_by_event_name
 WHERE event_name = 'idle'
UNION ALL
SELECT 'time', thread_id, NULL, NULL, NULL, NULL, sum_timer_wait DIV 1000000
  FROM performance_schema.events_statements_summary_by_thread_by_event_name
 WHERE count_star > 0 AND (event_name LIKE 'statement/sql/%' OR event_name LIKE 'statement/com/%')
UNION ALL
SELECT 'word of the client', processlist_id, attr_name, NULL, attr_value, NULL, NULL
  FROM performance_schema.session_connect_attrs
 WHERE attr_name IN ('program_name', '_client_name')
