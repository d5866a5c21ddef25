#include "tal/sim/demo.h"

namespace tal::sim {

const std::string_view kDemo =
    R"toml(# A small shop on an afternoon. Numbers move with every refresh.

[engine]
type = 0

[version]
major = 15
minor = 21
build = 16

[usage]
users = { current = [4, 5, 5, 4], peak = 6, maximum = 20 }
files = { current = [7, 8, 7], peak = 12, maximum = 0 }
handles = { current = [18, 20, 18], peak = 31, maximum = 0 }
transactions = { current = [2, 1, 3, 2], peak = 9, maximum = 0 }
clients = { current = [5, 6, 5], peak = 8, maximum = 0 }
worker_threads = { current = 3, peak = 8, maximum = 64 }
locks = { current = [14, 9, 27, 11], peak = 112 }
data_mb = { current = { start = 182, step = 1 }, peak = { start = 190, step = 1 }, maximum = 10240 }
sessions = { current = [5, 6, 5], peak = 11, maximum = -1 }
up_time_seconds = { start = 273845, step = 10 }

[communication]
requests = { start = 1843207, step = 418 }
counter_1 = { start = 1843207, step = 418 }
counter_2 = { start = 91244, step = 12 }
counter_3 = 0
remote_sessions = { current = [3, 4, 3], peak = 9, maximum = -1 }
threads = { current = 4, peak = 6, maximum = 16 }
timeouts = [2, 2, 3]
recoveries = [1, 1, 2]

[[communication.protocol]]
code = "spx"
requests = 1204
current_sessions = 0
peak_sessions = 2

[[communication.protocol]]
code = "tcp/ip"
requests = { start = 1840118, step = 415 }
current_sessions = [3, 4, 3]
peak_sessions = 9

[[communication.protocol]]
code = "netbios"
requests = { start = 1873, step = 3 }
current_sessions = 1
peak_sessions = 1

[[communication.protocol]]
code = 7  # one that no report knows
requests = 12
current_sessions = 0
peak_sessions = 1

[[file]]
name = 'C:\SHOP\DATA\CUSTOMER.DAT'
page_size = 4096
read_only = "no"
record_locks = "yes"
transaction_lock = "yes"
size_kb = { start = 18432, step = 4 }
[[file.handle]]
client = "anna"
client_index = 1
open_mode = "normal"
record_lock = "single"
wait_state = "none"
transaction_state = "concurrent"
[[file.handle]]
client = "till-1"
client_index = 3
open_mode = "accelerated"
record_lock = "none"
wait_state = "record"
transaction_state = "none"

[[file]]
name = 'C:\SHOP\DATA\ORDERS.DAT'
page_size = 8192
read_only = "no"
record_locks = "yes"
transaction_lock = "yes"
size_kb = { start = 96256, step = 64 }
[[file.handle]]
client = "anna"
client_index = 1
open_mode = "normal"
record_lock = "multiple"
transaction_state = "exclusive"
[[file.handle]]
client = "till-1"
client_index = 3
open_mode = "normal shared locking"
wait_state = "file"
[[file.handle]]
client = "till-2"
client_index = 4
open_mode = "exclusive shared locking"
record_lock = ["none", "single", "none"]
transaction_state = ["none", "concurrent", "none"]
[[file.handle]]
client = "report"
client_index = 5
open_mode = "verify shared locking"

[[file]]
name = '\\STORE\SHOP\DATA\ITEMS.DAT'
page_size = 2048
read_only = "no"
record_locks = "yes"
transaction_lock = "no"
size_kb = 5120
[[file.handle]]
client = "till-1"
client_index = 3
open_mode = "read-only shared locking"
[[file.handle]]
client = "till-2"
client_index = 4
open_mode = "accelerated shared locking"
record_lock = "single"
[[file.handle]]
client = "anna"
client_index = 1
open_mode = "exclusive"
record_lock = "unknown"
wait_state = "unknown"
transaction_state = "unknown"

[[file]]
name = "/var/shop/prices.dat"
page_size = 1024
read_only = "yes"
record_locks = "no"
transaction_lock = "no"
size_kb = 640
[[file.handle]]
client = "till-{n}"
client_index = { start = 3, each = 1 }
open_mode = "read-only"
count = 2
[[file.handle]]
client = "report"
client_index = 5
open_mode = "read-only non-transactional"

[[file]]
name = "/var/shop/archive/orders 2025.dat"
page_size = 4096
read_only = "yes"
record_locks = "no"
transaction_lock = "no"
size_kb = 204800
[[file.handle]]
client = "report"
client_index = 5
open_mode = "verify"
[[file.handle]]
client = "report"
client_index = 5
open_mode = "verify non-transactional"

[[file]]
name = "/var/shop/log/journal.dat"
page_size = 512
read_only = "unknown"
record_locks = "unknown"
transaction_lock = "unknown"
size_kb = { start = 12, step = 1 }
[[file.handle]]
client = "till-{n}"
client_index = { start = 3, each = 1 }
open_mode = "accelerated non-transactional"
count = 2
[[file.handle]]
client = "anna"
client_index = 1
open_mode = "normal non-transactional"
[[file.handle]]
client = "backup"
client_index = 6
open_mode = "exclusive non-transactional"
from = 2
until = 2

[[file]]
name = "/var/shop/Größen und Farben.dat"
page_size = 4096
read_only = "no"
record_locks = "yes"
transaction_lock = "yes"
size_kb = 256
[[file.handle]]
client = "anna"
client_index = 1
open_mode = "unknown"

[[file]]
name = "/var/shop/backup/today.dat"
page_size = 16384
read_only = "no"
record_locks = "no"
transaction_lock = "yes"
size_kb = 81920
from = 2
until = 2
[[file.handle]]
client = "backup"
client_index = 6
open_mode = "exclusive"
transaction_state = "exclusive"

[[client]]
id = "anna"
first_number = 1
task_number = 17
site = "local"
network_address = "127.0.0.1"
records_deleted = { start = 3, step = 1 }
records_updated = { start = 841, step = 9 }
records_inserted = { start = 212, step = 4 }
records_read = { start = 90417, step = 311 }
disk_accesses = { start = 2210, step = 6 }
cache_accesses = { start = 181034, step = 640 }
locks_used = [3, 2, 5, 3]
transaction_state = "exclusive"
process_id = 4711
connection_number = 1
session_name = "office"
[[client.handle]]
file = 'C:\SHOP\DATA\CUSTOMER.DAT'
open_mode = "normal"
record_lock = "single"
wait_state = "none"
transaction_state = "concurrent"
[[client.handle]]
file = 'C:\SHOP\DATA\ORDERS.DAT'
open_mode = "normal"
record_lock = "multiple"
transaction_state = "exclusive"
[[client.handle]]
file = '\\STORE\SHOP\DATA\ITEMS.DAT'
open_mode = "exclusive"
record_lock = "unknown"
wait_state = "unknown"
transaction_state = "unknown"
[[client.handle]]
file = "/var/shop/log/journal.dat"
open_mode = "normal non-transactional"
[[client.handle]]
file = "/var/shop/Größen und Farben.dat"
open_mode = "unknown"

[[client]]
id = "bert"
first_number = 2
task_number = 18
site = "unknown"
network_address = ""
session_name = ""

[[client]]
id = "till-1"
first_number = 3
task_number = 1
site = "remote"
network_address = "192.168.10.21"
records_deleted = 0
records_updated = { start = 5120, step = 21 }
records_inserted = { start = 4904, step = 20 }
records_read = { start = 40226, step = 180 }
disk_accesses = { start = 804, step = 2 }
cache_accesses = { start = 90112, step = 402 }
locks_used = 1
transaction_state = "concurrent"
process_id = 1201
connection_number = 32000
session_name = "till at the entrance"
[[client.handle]]
file = 'C:\SHOP\DATA\CUSTOMER.DAT'
open_mode = "accelerated"
wait_state = "record"
[[client.handle]]
file = 'C:\SHOP\DATA\ORDERS.DAT'
open_mode = "normal shared locking"
wait_state = "file"
[[client.handle]]
file = '\\STORE\SHOP\DATA\ITEMS.DAT'
open_mode = "read-only shared locking"
[[client.handle]]
file = "/var/shop/prices.dat"
open_mode = "read-only"
[[client.handle]]
file = "/var/shop/log/journal.dat"
open_mode = "accelerated non-transactional"

[[client]]
id = "till-2"
first_number = 4
task_number = 1
site = "remote"
network_address = "fe80::1c2a:4fff:fe03:22"
records_updated = { start = 3317, step = 14 }
records_inserted = { start = 3290, step = 13 }
records_read = { start = 28040, step = 122 }
disk_accesses = { start = 511, step = 1 }
cache_accesses = { start = 61004, step = 260 }
locks_used = [0, 1, 0]
transaction_state = ["none", "concurrent", "none"]
process_id = 1202
connection_number = 32001
session_name = "till at the back"
[[client.handle]]
file = 'C:\SHOP\DATA\ORDERS.DAT'
open_mode = "exclusive shared locking"
record_lock = ["none", "single", "none"]
transaction_state = ["none", "concurrent", "none"]
[[client.handle]]
file = '\\STORE\SHOP\DATA\ITEMS.DAT'
open_mode = "accelerated shared locking"
record_lock = "single"
[[client.handle]]
file = "/var/shop/prices.dat"
open_mode = "read-only"
[[client.handle]]
file = "/var/shop/log/journal.dat"
open_mode = "accelerated non-transactional"

[[client]]
id = "report"
first_number = 5
task_number = 2
site = "remote"
network_address = "192.168.10.40"
records_read = { start = 1500200, step = 25000 }
disk_accesses = { start = 70400, step = 1200 }
cache_accesses = { start = 1400300, step = 23000 }
transaction_state = "unknown"
process_id = 20815
connection_number = 3
session_name = "yearly figures"
[[client.handle]]
file = 'C:\SHOP\DATA\ORDERS.DAT'
open_mode = "verify shared locking"
[[client.handle]]
file = "/var/shop/prices.dat"
open_mode = "read-only non-transactional"
[[client.handle]]
file = "/var/shop/archive/orders 2025.dat"
open_mode = "verify"
[[client.handle]]
file = "/var/shop/archive/orders 2025.dat"
open_mode = "verify non-transactional"

[[client]]
id = "backup"
first_number = 6
task_number = 9
site = "local"
network_address = "127.0.0.1"
records_read = 20480
disk_accesses = 20480
process_id = 23001
connection_number = 4
session_name = "nightly copy, by hand"
from = 2
until = 2
[[client.handle]]
file = "/var/shop/backup/today.dat"
open_mode = "exclusive"
transaction_state = "exclusive"
[[client.handle]]
file = "/var/shop/log/journal.dat"
open_mode = "exclusive non-transactional"

[[sql_connection]]
client_host = "office-1"
data_source = "SHOP"
application = "Order Entry"
network_address = "192.168.10.11"
user_name = "anna"
status = "active"
period_ms = { start = 120, step = 250 }
total_time = { start = 9240, step = 10 }

[[sql_connection]]
client_host = "office-2"
data_source = "SHOP"
application = "Spreadsheet"
network_address = "192.168.10.12"
user_name = "bert"
status = ["idle", "idle", "active"]
period_ms = [10000, 20000, 35]
total_time = { start = 3605, step = 10 }

[[sql_connection]]
client_host = "reports.shop.example"
data_source = "SHOP ARCHIVE"
application = "/usr/bin/yearly-figures"
network_address = "192.168.10.40"
user_name = "report"
status = "dying"
period_ms = 60000
total_time = { start = 61, step = 10 }
)toml";

}  // namespace tal::sim
