// The firewall restart that follows a change of its rules.
#pragma once

// Logs and restarts the firewall; takes seconds.
void exec_securityReload();

// Restarts the firewall in the background, so that the answer is not delayed.
void restart_firewall();
