#pragma once

struct AppState;
struct Services;

// The About window's "Fix Reg": asks, then deletes every setting and ends the program.
void CMDReset_Click(Services& services, const AppState& state);
