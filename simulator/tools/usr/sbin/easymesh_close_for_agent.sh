#!/bin/sh
# Leaves the mesh; a change of its mode alone joins it again, in the new mode.
exec /usr/sbin/easymesh_close_for_controller.sh
