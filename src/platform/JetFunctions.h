#pragma once
// Functions and aggregates of the Jet SQL dialect registered on a SQLite
// connection, so that statements written for Jet run unchanged:
// Var/StDev (sample, divisor n - 1), VarP/StDevP (population), UCase, LCase,
// Len, Mid, Left$-free helpers, IIf, Nz, Val, CStr, CDbl, CLng, Int, Fix.

struct sqlite3;

namespace mervola {

void registerJetFunctions(sqlite3 *db);

}  // namespace mervola
