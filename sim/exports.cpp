// The library is made of the objects of qvsim_core; this file only gives the shared target a source.
