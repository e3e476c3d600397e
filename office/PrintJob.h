#pragma once
// What the user asked of one print job in the print dialog.

struct PrintJob {
    int copies = 1;
    bool collate = true; // 1 2 3, 1 2 3 … rather than 1 1, 2 2, 3 3
    int fromPage = 1;    // pages from 1; 0 in both = all pages
    int toPage = 0;
};
