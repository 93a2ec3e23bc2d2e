// Which MLD interface carries an access point in the mesh that this unit is part of.
#pragma once

// The MLD that carries `ifname` in the mesh that UCI describes now; nullptr (and one log line) when there is none.
const char* get_mesh_mld_by_ifname(const char* ifname);
