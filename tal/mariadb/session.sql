SET SESSION max_statement_time = 4.9,
    SESSION tx_read_only = 1,
    SESSION sql_mode = '',
    SESSION sql_big_selects = 1
