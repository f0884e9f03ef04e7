.pragma library

// The local path of a file:// URL from a file chooser: "file:///C:/x" gives "C:/x", "file:///home/x" gives "/home/x".
function localPath(url) {
    let path = decodeURIComponent(url.toString().replace(/^file:\/\//, ""))
    if (/^\/[A-Za-z]:/.test(path))
        path = path.substring(1)
    return path
}
