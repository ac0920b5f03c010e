// The page's own scripts get no message handlers.
delete window.webkit;
