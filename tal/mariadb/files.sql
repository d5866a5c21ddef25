-- The triple CONVERT turns a name in the server's encoding of file names (we@0020ird) into the
-- table's; a single conversion does not work on a column.
SELECT 'F' AS part, file_name AS path, event_name AS event,
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
SELECT 'I', IF(filename LIKE './%', CONCAT(@@datadir, SUBSTRING(filename, 3)), filename), NULL,
       space, page_size, file_size,
       CONVERT(CONVERT(CONVERT(
         SUBSTRING_INDEX(name, '/', 1)
         USING binary) USING filename) USING utf8mb4),
       CONVERT(CONVERT(CONVERT(
         SUBSTRING_INDEX(SUBSTRING_INDEX(SUBSTRING_INDEX(name, '/', -1), '#P#', 1), '#p#', 1)
         USING binary) USING filename) USING utf8mb4)
  FROM information_schema.innodb_sys_tablespaces
