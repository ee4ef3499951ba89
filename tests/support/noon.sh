# At midnight waits end early, as they must. A script with a real clock sources this: what it starts runs in a time
# zone in which it is noon now.
TZ=NOON$(($(date -u +%s) / 3600 % 24 - 12)) # hours west of Greenwich
export TZ
