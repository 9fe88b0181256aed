console.log("quillon");
