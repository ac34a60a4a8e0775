// Tells the server the browser's time zone, and shows the first page once more in it.
{
    const cookie = "zone=" + Intl.DateTimeFormat().resolvedOptions().timeZone;
    if (!document.cookie.split("; ").includes(cookie)) {
        document.cookie = cookie + "; path=/; max-age=31536000; samesite=lax";
        if (document.cookie.includes(cookie) && document.querySelector("time")) location.reload();
    }
}
