#!/bin/sh
# Makes the unit a mesh controller, as the platform's script does in some minutes.
uci=/router/tools/uci
$uci -q batch <<'END'
set button_mesh.easymesh.enable=1
set button_mesh.easymesh.role=controller
commit button_mesh
set repacd.repacd.Enable=1
set repacd.repacd.Role=CAP
commit repacd
END
exec /router/bin/wifi
