// Keeps the archive from being empty until the first real source stands here.
