-- zelk: may this account see everything that is reported, and are the settings of the session ours?
SELECT pg_catalog.pg_has_role('pg_read_all_stats', 'USAGE'),
       pg_catalog.current_setting('search_path'),
       pg_catalog.current_setting('statement_timeout'),
       pg_catalog.current_setting('lock_timeout'),
       pg_catalog.current_setting('idle_session_timeout'),
       pg_catalog.current_setting('default_transaction_read_only'),
       pg_catalog.current_setting('default_transaction_deferrable'),
       pg_catalog.current_setting('default_transaction_isolation')
