SELECT variable_name, variable_value
  FROM information_schema.global_status
 WHERE variable_name IN ('UPTIME', 'THREADS_CONNECTED', 'THREADS_CACHED', 'MAX_USED_CONNECTIONS',
                         'OPEN_FILES', 'INNODB_NUM_OPEN_FILES', 'OPEN_TABLES', 'THREADPOOL_THREADS')
UNION ALL
SELECT variable_name, variable_value
  FROM information_schema.global_variables
 WHERE variable_name IN ('MAX_CONNECTIONS', 'OPEN_FILES_LIMIT', 'TABLE_OPEN_CACHE',
                         'THREAD_POOL_MAX_THREADS')
UNION ALL SELECT 'x_thread_pool', @@thread_handling = 'pool-of-threads'
UNION ALL SELECT 'x_transactions', COUNT(*) FROM information_schema.innodb_trx
UNION ALL SELECT 'x_locks', COALESCE(SUM(trx_rows_locked), 0) FROM information_schema.innodb_trx
UNION ALL SELECT 'x_data_bytes', COALESCE(SUM(file_size), 0)
            FROM information_schema.innodb_sys_tablespaces
