-- Facts that cannot change while the server runs, and whether the server lists metadata locks: if so,
-- those of this statement are in the list. The parts without rows fail if the account may not read
-- a table that another statement needs.
SELECT @@innodb_read_only, @@skip_networking, @@aria_block_size, @@myisam_block_size,
       @@performance_schema,
       (SELECT COUNT(*)
          FROM performance_schema.threads t
          JOIN performance_schema.metadata_locks m ON m.owner_thread_id = t.thread_id
         WHERE t.processlist_id = CONNECTION_ID()),
       (SELECT COUNT(*) FROM information_schema.innodb_trx)
UNION ALL SELECT 0, 0, 0, 0, 0, 0, 0 FROM performance_schema.socket_instances WHERE FALSE
UNION ALL SELECT 0, 0, 0, 0, 0, 0, 0 FROM performance_schema.session_connect_attrs WHERE FALSE
UNION ALL SELECT 0, 0, 0, 0, 0, 0, 0 FROM performance_schema.file_instances WHERE FALSE
UNION ALL SELECT 0, 0, 0, 0, 0, 0, 0 FROM performance_schema.status_by_thread WHERE FALSE
UNION ALL SELECT 0, 0, 0, 0, 0, 0, 0 FROM performance_schema.status_by_host WHERE FALSE
UNION ALL SELECT 0, 0, 0, 0, 0, 0, 0
            FROM performance_schema.events_waits_summary_by_thread_by_event_name WHERE FALSE
UNION ALL SELECT 0, 0, 0, 0, 0, 0, 0
            FROM performance_schema.events_statements_summary_by_thread_by_event_name WHERE FALSE
