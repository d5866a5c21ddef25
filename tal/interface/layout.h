// Turns the values of engines into the structures of the interface. Every byte of a structure is
// written; a value that an engine does not supply is 0. Texts are cleaned, and cut to the length of
// their fields.
#pragma once

#include <cstddef>
#include <cstdint>

#include "engine/tal.h"
#include "tal/engine.h"

namespace tal::interface {

// A length.
void fill(std::uint32_t& out, std::size_t count) noexcept;
void fill(TalVersion& out, const Version& version) noexcept;
void fill(TalUsage& out, const Usage& usage) noexcept;
void fill(TalCommStat& out, const Communication& communication) noexcept;
void fill(TalFileInfo& out, const OpenFile& file) noexcept;
void fill(TalFileHandleInfo& out, const FileHandle& handle) noexcept;
void fill(tagTALCLIENTID& out, const Client& client) noexcept;
void fill(TalClientInfo& out, const Client& client) noexcept;
void fill(TalClientHandleInfo& out, const ClientHandle& handle) noexcept;
void fill(TalSqlConnectionInfo& out, const SqlConnection& connection) noexcept;

}  // namespace tal::interface
