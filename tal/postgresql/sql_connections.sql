-- zelk: SQL connections.
SELECT coalesce(a.client_hostname, host(a.client_addr), CASE a.client_port WHEN -1 THEN '[local]' END, '') AS host,
       a.datname AS source, a.application_name AS app,
       CASE WHEN a.client_port = -1 THEN '[local]' ELSE coalesce(host(a.client_addr), '') END AS address,
       a.usename AS usr,
       CASE WHEN a.state IN ('active','fastpath function call') THEN 1
            WHEN a.state = 'disabled' AND a.wait_event IS DISTINCT FROM 'ClientRead' THEN 1
            ELSE 0 END                                                                    AS status,
       least(4294967295, greatest(0, round(extract(epoch FROM clock_timestamp() - coalesce(a.state_change, a.backend_start)) * 1000)))::bigint AS period_ms,
       least(4294967295, greatest(0, floor(extract(epoch FROM clock_timestamp() - a.backend_start))))::bigint        AS total_s
FROM pg_stat_activity a
WHERE a.backend_type = 'client backend'
ORDER BY a.backend_start, a.pid
