-- The files that the server has open, and the tablespaces of InnoDB. Most tablespaces are in both
-- parts.
-- The threefold CONVERT turns a file's name (we@0020ird) into the name of the table. A single
-- conversion does not work on a column.
SELECT 'open file' AS part, file_name AS path, event_name AS event,
       NULL AS space, NULL AS page_size, NULL AS bytes,
       CONVERT(CONVERT(CONVERT(
         SUBSTRING_INDEX(SUBSTRING_INDEX(file_name, '/', -2), '/', 1)
         USING binary) USING filename) USING utf8mb4) AS table_schema,
       CONVERT(CONVERT(CONVERT(
         SUBSTRING_INDEX(SUBSTRING_INDEX(SUBSTRING_INDEX(file_name, '/', -1), '.', 1), '#P#', 1)
         USING binary) USING filename) USING utf8mb4) AS table_name
  FROM performance_schema.file_instances
 WHERE open_count > 0
UNION ALL
SELECT 'tablespace', IF(filename LIKE './%', CONCAT(@@datadir, SUBSTRING(filename, 3)), filename),
       NULL, space, page_size, file_size,
       CONVERT(CONVERT(CONVERT(
         SUBSTRING_INDEX(name, '/', 1)
         USING binary) USING filename) USING utf8mb4),
       CONVERT(CONVERT(CONVERT(
         SUBSTRING_INDEX(SUBSTRING_INDEX(SUBSTRING_INDEX(name, '/', -1), '#P#', 1), '#p#', 1)
         USING binary) USING filename) USING utf8mb4)
  FROM information_schema.innodb_sys_tablespaces
