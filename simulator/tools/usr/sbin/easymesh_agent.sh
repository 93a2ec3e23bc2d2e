#!/bin/sh
# Joins a mesh, as the platform's script does in some minutes.
uci=/router/tools/uci
$uci -q batch <<'END'
set button_mesh.easymesh.enable=1
set button_mesh.easymesh.role=agent
commit button_mesh
set repacd.repacd.Enable=1
set repacd.MAPConfig.OnboardingDone=1
commit repacd
END
exec /router/bin/wifi
