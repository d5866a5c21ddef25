-- zelk: communication statistics.
SELECT total.transactions, total.abandoned, session.remote, session.served,
       pg_catalog.current_setting('max_connections') AS connections_maximum,
       pg_catalog.current_setting('max_wal_senders') AS senders_maximum
FROM (SELECT pg_catalog.sum(d.xact_commit + d.xact_rollback)::bigint AS transactions,
             pg_catalog.sum(d.sessions_abandoned)::bigint AS abandoned
      FROM pg_catalog.pg_stat_database d) total
     CROSS JOIN
     (SELECT pg_catalog.count(*) FILTER (WHERE a.client_addr IS NOT NULL) AS remote,
             pg_catalog.count(*) AS served
      FROM pg_catalog.pg_stat_activity a
      WHERE a.backend_type IN ('client backend', 'walsender')) session
