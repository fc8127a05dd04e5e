// Stands in for a library folder that has no sources yet.
