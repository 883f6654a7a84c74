#ifndef LIBRARY_MOVIE_PASS_H
#define LIBRARY_MOVIE_PASS_H

#include "driver/library_driver.h"

// Hangs the films of the master list that no list of films holds under "movie".
void AddMasterMovies(LibraryDriver *driver);

#endif
