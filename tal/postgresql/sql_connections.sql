-- zelk: SQL connections.
SELECT coalesce(a.client_hostname, pg_catalog.host(a.client_addr),
                CASE a.client_port WHEN -1 THEN '[local]' END) AS host,
       a.datname AS data_source, a.application_name AS application,
       CASE a.client_port WHEN -1 THEN '[local]' ELSE pg_catalog.host(a.client_addr) END AS address,
       a.usename AS user_name,
       CASE a.state WHEN 'active' THEN true
                    WHEN 'fastpath function call' THEN true
                    -- track_activities is off. It is idle if it waits for the client.
                    WHEN 'disabled' THEN coalesce(a.wait_event <> 'ClientRead', true)
                    ELSE false END AS is_active,
       pg_catalog.round(extract(epoch FROM pg_catalog.clock_timestamp() -
                                           coalesce(a.state_change, a.backend_start)) *
                        1000::numeric) AS period_ms,
       pg_catalog.floor(extract(epoch FROM pg_catalog.clock_timestamp() - a.backend_start))
         AS total_seconds
FROM pg_catalog.pg_stat_activity a
WHERE a.backend_type = 'client backend'
ORDER BY a.backend_start, a.pid
