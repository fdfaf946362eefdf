/* A check that ends the function around it with 1 and says where, for hosts in C and C++. */
#ifndef CHECK_H
#define CHECK_H

#include <stdio.h>

#define CHECK(condition)                                                                                     \
    do {                                                                                                     \
        if (!(condition)) {                                                                                  \
            fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition);                                  \
            return 1;                                                                                        \
        }                                                                                                    \
    } while (0)

#endif
