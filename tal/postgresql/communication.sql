-- zelk: communication statistics.
SELECT d.requests, d.abandoned, d.fatal, d.killed, a.tcp, a.backends,
       current_setting('max_connections')::int AS max_conn, current_setting('max_wal_senders')::int AS max_senders
FROM (SELECT sum(xact_commit + xact_rollback)::bigint AS requests, sum(sessions_abandoned)::bigint AS abandoned,
             sum(sessions_fatal)::bigint AS fatal, sum(sessions_killed)::bigint AS killed
      FROM pg_stat_database) d,
     (SELECT count(*) FILTER (WHERE client_addr IS NOT NULL) AS tcp, count(*) AS backends
      FROM pg_stat_activity WHERE backend_type IN ('client backend','walsender')) a
