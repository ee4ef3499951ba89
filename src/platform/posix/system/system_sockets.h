#pragma once

#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
