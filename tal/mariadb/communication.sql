SELECT variable_name, variable_value
  FROM information_schema.global_status
 WHERE variable_name IN ('QUESTIONS', 'THREADS_CONNECTED', 'MAX_USED_CONNECTIONS',
                         'ABORTED_CLIENTS', 'THREADPOOL_THREADS')
UNION ALL
SELECT variable_name, variable_value
  FROM information_schema.global_variables
 WHERE variable_name IN ('MAX_CONNECTIONS', 'THREAD_POOL_MAX_THREADS')
UNION ALL SELECT 'x_thread_pool', @@thread_handling = 'pool-of-threads'
UNION ALL SELECT 'x_tcp_sessions', COUNT(*)
            FROM information_schema.processlist WHERE host LIKE '%:%'
UNION ALL SELECT 'x_tcp_requests', COALESCE(SUM(CAST(variable_value AS UNSIGNED)), 0)
            FROM performance_schema.status_by_host
           WHERE variable_name = 'Questions' AND host <> 'localhost'
